import { messages } from '../i18n'
import { visibleText } from '../model/visible-text'

const longestTitle = 3000

interface RowProps {
  id: string
  position: number
  count: number
  text: string | undefined
  /** What assistive technology is told: the row is chosen. */
  selected: boolean
  /** The row on which the keyboard is, where that is not the chosen one. */
  active?: boolean
  /** Chosen by the page alone: the place that was used last, and nothing to work on. */
  restored?: boolean
  /** It has just been added. */
  added?: boolean
  /** Shows a box that is ticked while the row is selected. */
  ticks?: boolean
  /** What chooses the row. */
  choosing: { onClick: (event: MouseEvent) => void; onMouseDown?: (event: MouseEvent) => void }
}

/** The press chooses a row, as in the system's own lists: rows are drawn anew while a list scrolls, and the browser drops a click whose row
 *  went between the press and the release. Assistive technology clicks without pressing. */
export const choosingByPress = (choose: (event: MouseEvent) => void): Required<RowProps['choosing']> => ({
  onMouseDown: event => {
    if (event.button !== 0) return
    // Else the browser would mark the text in between.
    if (event.shiftKey) event.preventDefault()
    choose(event)
  },
  onClick: event => {
    if (event.detail === 0) choose(event)
  },
})

export function Row({ id, position, count, text, selected, active, restored, added, ticks, choosing }: RowProps) {
  const shown = text === undefined ? '' : visibleText(text)
  return (
    <div
      id={id}
      role="option"
      class={`list-row${active ? ' active' : ''}${restored ? ' restored' : ''}${added ? ' added' : ''}`}
      aria-selected={selected}
      aria-setsize={count}
      aria-posinset={position + 1}
      onPointerEnter={event => {
        const inner = event.currentTarget.querySelector<HTMLElement>('.row-text')
        if (!inner) return
        event.currentTarget.title = inner.scrollWidth > inner.clientWidth ? visibleText(text ?? '', longestTitle) : ''
      }}
      {...choosing}
    >
      {ticks && <span class="row-tick" aria-hidden="true" />}
      {text === undefined ? (
        <span class="row-waiting" />
      ) : (
        <bdi class={`row-text${text === '' ? ' row-empty' : ''}`} dir="auto">
          {text === '' ? messages.value.emptyRow : shown}
        </bdi>
      )}
      {added && <span class="row-mark">{messages.value.addedRow}</span>}
    </div>
  )
}

/** Where a key moves the cursor, or undefined when it does not move it. */
export function keyTarget(key: string, from: number, count: number, page: number): number | undefined {
  const last = count - 1
  const to = (row: number): number => Math.max(0, Math.min(last, row))
  switch (key) {
    case 'ArrowDown':
      return to(from + 1)
    case 'ArrowUp':
      return to(from < 0 ? last : from - 1)
    case 'PageDown':
      return to(from + page)
    case 'PageUp':
      return to(from - page)
    case 'Home':
      return 0
    case 'End':
      return last
    default:
      return undefined
  }
}
