import { signal } from '@preact/signals'
import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import type { RowSelection } from '../model/selection'
import { Modal } from '../parts/modal'

interface Removal {
  control: ControlModel
  chosen: RowSelection
}

const asked = signal<Removal | null>(null)

/** Asks whether the rows are to be removed, and removes them then. */
export function askRemoval(control: ControlModel, chosen: RowSelection): void {
  asked.value = { control, chosen }
}

/** What is chosen and can be done with it. */
export function SelectionBar({ control, chosen, onEnd }: { control: ControlModel; chosen: RowSelection; onEnd: () => void }) {
  const m = messages.value
  const { count } = chosen
  return (
    <div class="selection-bar">
      <span aria-live="polite">{m.chosenRows(count)}</span>
      <button type="button" class="button small danger" disabled={count === 0} onClick={() => askRemoval(control, chosen)}>
        {m.removeRows}
      </button>
      <button type="button" class="button quiet small" onClick={onEnd}>
        {m.cancel}
      </button>
    </div>
  )
}

const listName = ({ form, name, shown }: ControlModel): string => {
  const frame = form.frameAround(name)?.shown.value
  return (frame && form.labelOf(frame)) || form.labelOf(shown.value)
}

/** The question before several entries are removed. */
export function RemovalQuestion() {
  const removal = asked.value
  if (!removal) return null
  const m = messages.value
  const { control, chosen } = removal
  const end = (): void => {
    asked.value = null
  }
  return (
    <Modal title={m.removeRows} role="alertdialog" class="box warning" describedBy="removal-text" closable={false} onCancel={end}>
      <p id="removal-text" class="box-text">
        {m.removalQuestion(chosen.count, listName(control))}
      </p>
      <div class="modal-buttons">
        <button type="button" class="button" autoFocus onClick={end}>
          {m.cancel}
        </button>
        <button
          type="button"
          class="button danger"
          onClick={() => {
            end()
            control.removeRows(chosen.ranges)
          }}
        >
          {m.removeRows}
        </button>
      </div>
    </Modal>
  )
}
