import { useEffect, useRef } from 'preact/hooks'
import { messages } from '../i18n'
import { leastColumn, moved } from '../model/columns'
import type { TableModel } from '../model/table'
import type { Column } from '../wire/protocol'

const step = 10
const longStep = 50

interface Props {
  table: TableModel
  columns: readonly Column[]
  /** Of the column in front of the edge. */
  place: number
}

const headOf = (edge: Element): HTMLElement | null => edge.closest<HTMLElement>('.table-head')
const widthsOf = (head: HTMLElement): number[] =>
  [...head.querySelectorAll('[role=columnheader]')].map(cell => cell.getBoundingClientRect().width)

/** How wide the column would have to be for its title, and for what is on view of it. */
function fitting(head: HTMLElement, place: number): number {
  let widest = 0
  for (const cell of head.parentElement?.querySelectorAll<HTMLElement>(`[aria-colindex="${place + 1}"]`) ?? []) {
    const { paddingLeft, paddingRight } = getComputedStyle(cell)
    let width = parseFloat(paddingLeft) + parseFloat(paddingRight)
    for (const part of cell.querySelectorAll<HTMLElement>('.table-sort > *, :scope > :not(.table-sort, .column-edge)')) {
      width += Math.max(part.scrollWidth, part.getBoundingClientRect().width) + (part.closest('.table-sort') ? 4 : 0)
    }
    widest = Math.max(widest, Math.ceil(width) + 1)
  }
  return widest
}

/** The edge behind a column, by which people change its width: with the mouse or a finger, or the arrow keys. */
export function ColumnEdge({ table, columns, place }: Props) {
  const element = useRef<HTMLDivElement>(null)
  const drag = useRef<{ x: number; widths: number[] } | null>(null)
  /** What was asked for and has not been drawn yet: held keys come faster. */
  const pending = useRef<number[] | null>(null)
  const asked = useRef(0)
  const drawn = asked.current
  const m = messages.value

  const tell = (): void => {
    const head = element.current && headOf(element.current)
    if (!head || !element.current) return
    const widths = widthsOf(head)
    const now = widths[place] ?? 0
    const most = moved(widths, place, Number.MAX_SAFE_INTEGER)[place] ?? now
    element.current.setAttribute('aria-valuenow', String(Math.round(now)))
    element.current.setAttribute('aria-valuemax', String(Math.round(most)))
  }
  useEffect(() => {
    tell()
    // A busy browser lays the columns out some frames later.
    const frame = requestAnimationFrame(() =>
      requestAnimationFrame(() => {
        if (drawn === asked.current) pending.current = null
      }),
    )
    return () => cancelAnimationFrame(frame)
  })
  useEffect(() => {
    const head = element.current?.closest('[role=columnheader]')
    if (!head) return undefined
    const observer = new ResizeObserver(tell)
    observer.observe(head)
    return () => observer.disconnect()
  }, [])

  const put = (widths: readonly number[], by: number): void => {
    if (by === 0) return
    const result = moved(widths, place, by)
    pending.current = result
    ++asked.current
    table.resize(Object.fromEntries(columns.map((column, at) => [column.name, result[at] ?? 0])))
  }
  const move = (by: number): void => {
    const head = element.current && headOf(element.current)
    if (head) put(pending.current ?? widthsOf(head), by)
  }
  const fit = (): void => {
    const head = element.current && headOf(element.current)
    if (!head) return
    const widths = widthsOf(head)
    put(widths, Math.max(leastColumn, fitting(head, place)) - (widths[place] ?? 0))
  }
  const goTo = (by: number): void => {
    const edges = element.current ? [...(headOf(element.current)?.querySelectorAll<HTMLElement>('.column-edge') ?? [])] : []
    edges[edges.indexOf(element.current as HTMLElement) + by]?.focus()
  }

  return (
    <div
      ref={element}
      role="separator"
      aria-orientation="vertical"
      aria-label={m.columnWidth(columns[place]?.caption ?? '')}
      aria-valuemin={leastColumn}
      // One stop for all edges of the table; the vertical arrows lead to the others.
      tabIndex={place === 0 ? 0 : -1}
      class="column-edge"
      title={m.columnWidthTip}
      onPointerDown={event => {
        const head = headOf(event.currentTarget)
        if (event.button !== 0 || !head) return
        event.currentTarget.setPointerCapture(event.pointerId)
        drag.current = { x: event.clientX, widths: widthsOf(head) }
      }}
      onPointerMove={event => {
        if (drag.current) put(drag.current.widths, event.clientX - drag.current.x)
      }}
      onPointerUp={event => {
        if (drag.current && event.clientX !== drag.current.x) table.keepWidths()
        drag.current = null
      }}
      onPointerCancel={() => {
        drag.current = null
      }}
      onDblClick={() => {
        fit()
        table.keepWidths()
      }}
      onKeyDown={event => {
        const by = event.shiftKey ? longStep : step
        if (event.key === 'ArrowRight') move(by)
        else if (event.key === 'ArrowLeft') move(-by)
        else if (event.key === 'Home') move(-Number.MAX_SAFE_INTEGER)
        else if (event.key === 'End') move(Number.MAX_SAFE_INTEGER)
        else if (event.key === 'Enter') fit()
        else if (event.key === 'ArrowDown') goTo(1)
        else if (event.key === 'ArrowUp') goTo(-1)
        else return
        event.preventDefault()
        table.keepWidths()
      }}
    />
  )
}
