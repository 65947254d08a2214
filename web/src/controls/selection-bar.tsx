import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import type { RowSelection } from '../model/selection'

/** What is chosen and can be done with it. */
export function SelectionBar({ control, chosen, onEnd }: { control: ControlModel; chosen: RowSelection; onEnd: () => void }) {
  const m = messages.value
  const { count } = chosen
  return (
    <div class="selection-bar">
      <span aria-live="polite">{m.chosenRows(count)}</span>
      <button type="button" class="button small danger" disabled={count === 0} onClick={() => control.removeRows(chosen.ranges)}>
        {m.removeRows}
      </button>
      <button type="button" class="button quiet small" onClick={onEnd}>
        {m.cancel}
      </button>
    </div>
  )
}
