import { useEffect, useRef, useState } from 'preact/hooks'
import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import { Upload, browserRequest, type Sending } from '../model/uploads'
import { visibleText } from '../model/visible-text'
import { Icon } from '../parts/icon'
import { toasts } from '../state/app-state'
import { ListBox } from './list-box'

const longestName = 100

const holdsFiles = (event: DragEvent): boolean => event.dataTransfer?.types.includes('Files') ?? false

/** A file that is dropped beside a list would take the place of the whole page. */
export function catchStrayFiles(): void {
  for (const kind of ['dragover', 'drop'] as const) {
    document.addEventListener(kind, event => {
      if (!holdsFiles(event) || event.defaultPrevented) return
      event.preventDefault()
      if (event.dataTransfer) event.dataTransfer.dropEffect = 'none'
    })
  }
}

function useUpload(): Upload {
  const [upload] = useState(() => new Upload(browserRequest))
  upload.onProblem = (problem, name) =>
    toasts.add(messages.value.uploadFailed(visibleText(name, longestName)), {
      detail: messages.value.uploadProblem(problem),
      failed: true,
    })
  upload.onDone = (name, kept) => {
    const m = messages.value
    const sent = visibleText(name, longestName)
    toasts.add(kept === name ? m.uploaded(sent) : m.uploadedAs(sent, visibleText(kept, longestName)))
  }
  useEffect(() => () => upload.cancel(), [upload])
  return upload
}

function UploadBar({ sending, onCancel }: { sending: Sending; onCancel: () => void }) {
  const m = messages.value
  const name = visibleText(sending.name, longestName)
  const part = sending.total === 0 ? 100 : Math.floor((sending.done / sending.total) * 100)
  const text = part < 100 ? m.uploading(name) : m.uploadWaiting(name)
  return (
    <div class="upload-bar">
      <bdi class="upload-name">{text}</bdi>
      <span class="upload-part">{part} %</span>
      <button type="button" class="icon-button small" aria-label={m.uploadCancel} onClick={onCancel}>
        <Icon name="close" />
      </button>
      <div class="upload-progress" role="progressbar" aria-label={text} aria-valuemin={0} aria-valuemax={100} aria-valuenow={part}>
        <span style={{ width: `${part}%` }} />
      </div>
    </div>
  )
}

/** The files of a folder of the host's; one of the user's own can be sent into it. */
export function FileList({ control }: { control: ControlModel }) {
  const m = messages.value
  const upload = useUpload()
  const picker = useRef<HTMLInputElement>(null)
  const [over, setOver] = useState(false)
  const sending = upload.sending.value
  const usable = control.shown.value.enabled && sending === null
  const send = (files: FileList | null | undefined): void => {
    const file = files?.[0]
    if (!file) return
    if ((files?.length ?? 0) > 1) toasts.add(m.uploadOne)
    void upload.start(control.form.name, control.name, file)
  }
  return (
    <div
      class="file-list"
      data-over={over ? '' : undefined}
      onDragOver={event => {
        if (!usable || !holdsFiles(event)) return
        event.preventDefault()
        if (event.dataTransfer) event.dataTransfer.dropEffect = 'copy'
        setOver(true)
      }}
      onDragLeave={event => {
        if (!(event.relatedTarget instanceof Node && event.currentTarget.contains(event.relatedTarget))) setOver(false)
      }}
      onDrop={event => {
        setOver(false)
        if (!usable || !holdsFiles(event)) return
        event.preventDefault()
        send(event.dataTransfer?.files)
      }}
    >
      <ListBox
        control={control}
        bar={sending && <UploadBar sending={sending} onCancel={() => upload.cancel()} />}
        tool={
          <>
            <button type="button" class="button quiet small" disabled={!usable} onClick={() => picker.current?.click()}>
              <Icon name="upload" />
              {m.upload}
            </button>
            <input
              ref={picker}
              type="file"
              hidden
              tabIndex={-1}
              onChange={event => {
                send(event.currentTarget.files)
                event.currentTarget.value = ''
              }}
            />
          </>
        }
      />
      {over && <p class="drop-note">{m.uploadDrop}</p>}
    </div>
  )
}
