import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import { ListBox } from './list-box'
import { FilePicker } from './file-picker'
import { UploadBar, useDrop, useUpload } from './upload'

/** The files of a folder of the host's; one of the user's own can be sent into it. */
export function FileList({ control }: { control: ControlModel }) {
  const m = messages.value
  const upload = useUpload()
  const { enabled, exchange } = control.shown.value
  const sending = upload.sending.value
  const usable = enabled && sending === null
  const send = (file: File): void => void upload.start(control.form.name, control.name, file)
  const { over, handlers } = useDrop(usable, send)
  return (
    <div class="file-list" data-over={over ? '' : undefined} {...handlers}>
      <ListBox
        control={control}
        bar={sending && <UploadBar sending={sending} onCancel={() => upload.cancel()} />}
        // Where the form says what it does with files, people send them from there.
        tool={!exchange && <FilePicker class="button quiet small" caption={m.fromMyComputer} disabled={!usable} onChoose={send} />}
      />
      {over && <p class="drop-note">{m.uploadDrop}</p>}
    </div>
  )
}
