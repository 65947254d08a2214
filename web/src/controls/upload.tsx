import { useEffect, useState } from 'preact/hooks'
import { messages } from '../i18n'
import { browserRequest, Upload, type Sending } from '../model/uploads'
import { visibleText } from '../model/visible-text'
import { Icon } from '../parts/icon'
import { session, toasts } from '../state/app-state'

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

/** The upload of one place that files can be put on. `quiet`: what becomes of the file is told there. */
export function useUpload(quiet = false): Upload {
  const [upload] = useState(() => new Upload(() => browserRequest(session.hello.peek()?.tab ?? '')))
  upload.onProblem = (problem, name) =>
    toasts.add(messages.value.uploadFailed(visibleText(name, longestName)), {
      detail: messages.value.uploadProblem(problem),
      failed: true,
    })
  upload.onDone = (name, kept) => {
    if (quiet && kept === name) return
    const m = messages.value
    const sent = visibleText(name, longestName)
    toasts.add(kept === name ? m.uploaded(sent) : m.uploadedAs(sent, visibleText(kept, longestName)))
  }
  useEffect(() => () => upload.cancel(), [upload])
  return upload
}

export function UploadBar({ sending, onCancel }: { sending: Sending; onCancel: () => void }) {
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

/** Takes files that are dropped on an element: its handlers, and whether one is held over it. */
export function useDrop(usable: boolean, take: (file: File) => void) {
  const [over, setOver] = useState(false)
  return {
    over: over && usable,
    handlers: {
      onDragOver: (event: DragEvent): void => {
        if (!usable || !holdsFiles(event)) return
        event.preventDefault()
        if (event.dataTransfer) event.dataTransfer.dropEffect = 'copy'
        setOver(true)
      },
      onDragLeave: (event: DragEvent): void => {
        const { currentTarget, relatedTarget } = event
        if (!(relatedTarget instanceof Node && currentTarget instanceof Element && currentTarget.contains(relatedTarget))) setOver(false)
      },
      onDrop: (event: DragEvent): void => {
        setOver(false)
        if (!usable || !holdsFiles(event)) return
        event.preventDefault()
        firstOf(event.dataTransfer?.files, take)
      },
    },
  }
}

/** One file at a time. */
export function firstOf(files: FileList | null | undefined, take: (file: File) => void): void {
  const file = files?.[0]
  if (!file) return
  if ((files?.length ?? 0) > 1) toasts.add(messages.value.uploadOne)
  take(file)
}
