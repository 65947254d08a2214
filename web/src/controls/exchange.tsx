import { useEffect, useRef, useState } from 'preact/hooks'
import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import { fileNameOf } from '../model/product-path'
import { visibleText } from '../model/visible-text'
import { Icon, Spinner } from '../parts/icon'
import { droppedFile } from '../state/app-state'
import type { Exchange as Declared } from '../wire/protocol'
import { FilePicker } from './file-picker'
import { UploadBar, useDrop, useUpload } from './upload'

const longestName = 100

/** Where people exchange files of their own with a form, in place of files on the console's machine. */
export function Exchange({ control, declared }: { control: ControlModel; declared: Declared }) {
  const m = messages.value
  const { form } = control
  const part = (name: string | undefined): ControlModel | undefined => (name === undefined ? undefined : form.controls.get(name))
  const run = part(declared.run)
  const exports = part(declared.exports)
  const imports = part(declared.imports)
  const upload = useUpload(true)
  /** A file that was dropped on a list: nothing is done with it before somebody has agreed. */
  const [asked, setAsked] = useState<File | null>(null)
  useEffect(() => {
    const dropped = droppedFile.peek()
    if (!dropped) return
    droppedFile.value = null
    setAsked(dropped)
    if (imports?.shown.peek().value !== 1) imports?.click()
  }, [])

  const agree = useRef<HTMLButtonElement>(null)
  useEffect(() => agree.current?.focus(), [asked])

  const sending = upload.sending.value
  const writes = exports?.shown.value.value === 1
  const waits = (run?.waiting.value ?? 0) > 0 || control.waiting.value > 0
  const usable = control.shown.value.enabled && run?.shown.value.enabled === true && sending === null && !waits
  const act = run ? form.labelOf(run.shown.value) : ''
  const use = async (file: File): Promise<void> => {
    setAsked(null)
    const kept = await upload.start(form.name, control.name, file)
    // Another act may have been chosen meanwhile.
    if (kept && !form.closed.peek() && run && form.labelOf(run.shown.peek()) === act) run.click()
  }
  const { over, handlers } = useDrop(usable && !writes, file => void use(file))
  const result = part(declared.result)?.shown.value.caption ?? ''
  const name = fileNameOf(part(declared.path)?.text.value.trim() ?? '')

  const body = (): preact.ComponentChild => {
    if (sending) return <UploadBar sending={sending} onCancel={() => upload.cancel()} />
    if (asked) {
      return (
        <>
          <p>
            {m.importDropped(visibleText(asked.name, longestName), form.caption.value)} <span class="count">{m.size(asked.size)}</span>
          </p>
          <div class="exchange-acts">
            <button type="button" ref={agree} class="button primary" disabled={!usable} onClick={() => void use(asked)}>
              {act}
            </button>
            <button type="button" class="button" onClick={() => setAsked(null)}>
              {m.cancel}
            </button>
          </div>
        </>
      )
    }
    if (writes) {
      return (
        <>
          <button type="button" class="button primary" disabled={!usable} aria-busy={waits} onClick={() => control.fetch()}>
            {waits ? <Spinner /> : <Icon name="download" />}
            {m.toMyComputer}
          </button>
          <p class="field-note">{m.toMyComputerNote(visibleText(name, longestName))}</p>
        </>
      )
    }
    return (
      <>
        <FilePicker
          class={`button${(run && form.lookOf(run)) || ' primary'}`}
          caption={m.fromMyComputer}
          disabled={!usable}
          onChoose={file => void use(file)}
        />
        <p class="field-note">{m.fromMyComputerNote}</p>
      </>
    )
  }
  return (
    <div class="exchange" data-over={over ? '' : undefined} {...handlers}>
      <div class="exchange-body">{body()}</div>
      <p class="exchange-result" role="status">
        {result !== '' && (
          <>
            <Icon name="info" />
            {m.numbersIn(result)}
          </>
        )}
      </p>
      {over && <p class="drop-note">{m.uploadDrop}</p>}
    </div>
  )
}
