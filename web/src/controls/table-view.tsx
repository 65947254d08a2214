import { useEffect, useLayoutEffect, useRef, useState } from 'preact/hooks'
import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import { templateOf } from '../model/columns'
import { coarse } from '../model/preferences'
import type { TableModel } from '../model/table'
import { Icon } from '../parts/icon'
import { toasts } from '../state/app-state'
import type { Column } from '../wire/protocol'
import { ColumnEdge } from './column-edge'
import { Field, nameOf, naming } from './field'
import { keyTarget } from './list-row'
import { linkOf, TableLine, type ShownColumn } from './table-row'
import { VirtualList, type VirtualListHandle } from './virtual-list'

const filterPause = 250
/** The host refuses to choose more. */
const mostChosen = 10_000
const wideWidth = 1200

const lineHeight = (): number => (coarse.value ? 44 : 32)
const cardHeight = (): number => (coarse.value ? 76 : 60)

/** The least width, in pixels, at which a column can be read. */
const leastWidths = { time: 215, verdict: 105, number: 90, address: 130, word: 100, severity: 110, check: 80, page: 120, text: 110 } as const
const leastWidth = (columns: readonly ShownColumn[]): number => columns.reduce((sum, { column }) => sum + leastWidths[column.kind], 0)

/** The order that a click on the column's head asks for: rising, then falling, then the table's own. */
export function nextSort(sort: string, column: Column): string {
  const first = column.kind === 'number' || column.kind === 'time' ? `${column.name} desc` : column.name
  const second = first === column.name ? `${column.name} desc` : column.name
  return sort === first ? second : sort === second ? '' : first
}

function Head({ control, columns, edges }: { control: ControlModel; columns: readonly Column[]; edges: boolean }) {
  const { sort = '', enabled } = control.shown.value
  const m = messages.value
  return (
    <div role="row" aria-rowindex={1} class="table-head">
      {columns.map((column, place) => {
        const order = sort === column.name ? 'ascending' : sort === `${column.name} desc` ? 'descending' : undefined
        return (
          <div
            key={column.name}
            role="columnheader"
            aria-colindex={place + 1}
            aria-label={column.caption}
            aria-sort={column.sorts ? (order ?? 'none') : undefined}
            class={`table-cell kind-${column.kind}`}
          >
            {column.sorts ? (
              <button
                type="button"
                class="table-sort"
                data-order={order}
                disabled={!enabled}
                title={m.sortBy(column.caption)}
                onClick={() => control.sortBy(nextSort(sort, column))}
              >
                <span>{column.caption}</span>
                <Icon name="chevron" />
              </button>
            ) : (
              <span>{column.caption}</span>
            )}
            {edges && place + 1 < columns.length && <ColumnEdge table={control.table as TableModel} columns={columns} place={place} />}
          </div>
        )
      })}
    </div>
  )
}

function TableFilter({ control }: { control: ControlModel }) {
  const shown = control.shown.value
  const [text, setText] = useState(shown.filter ?? '')
  const typed = useRef(text)
  const timer = useRef<ReturnType<typeof setTimeout> | undefined>(undefined)
  useEffect(() => () => clearTimeout(timer.current), [])
  useEffect(() => {
    // The page has set another filter; what is being typed stays.
    if (timer.current === undefined && shown.filter !== typed.current) setText((typed.current = shown.filter ?? ''))
  }, [shown.filter])
  const change = (filter: string, at = filterPause): void => {
    setText((typed.current = filter))
    clearTimeout(timer.current)
    timer.current = setTimeout(() => {
      timer.current = undefined
      control.filterBy(filter)
    }, at)
  }
  const m = messages.value
  const label = m.filterList(nameOf(control, shown))
  return (
    <div class="filter" role="search" aria-label={label}>
      <Icon name="search" />
      <input
        type="text"
        class="filter-input"
        id={`${control.id}-filter`}
        value={text}
        disabled={!shown.enabled}
        placeholder={m.filter}
        aria-label={label}
        autocomplete="off"
        spellcheck={false}
        dir="auto"
        onInput={event => change(event.currentTarget.value)}
        onKeyDown={event => {
          if (event.key === 'Escape' && text !== '') {
            event.preventDefault()
            event.stopPropagation()
            change('', 0)
          } else if (event.key === 'ArrowDown') {
            event.preventDefault()
            document.getElementById(control.id)?.focus()
          } else if (event.key === 'Enter') change(text, 0)
        }}
      />
      {text !== '' && (
        <button type="button" class="icon-button small" aria-label={m.clearFilter} onClick={() => change('', 0)}>
          <Icon name="close" />
        </button>
      )}
    </div>
  )
}

export function TableView({ control }: { control: ControlModel }) {
  const shown = control.shown.value
  const table = control.table as TableModel
  void table.version.value
  const m = messages.value
  const handle = useRef<VirtualListHandle>(null)
  const [cursor, setCursor] = useState(-1)
  const [width, setWidth] = useState(wideWidth)
  /** Where a range of rows begins. */
  const anchor = useRef(-1)
  const frame = useRef<HTMLDivElement>(null)

  const count = table.length
  const chosen = new Set(shown.chosen ?? [])
  const active = cursor < count ? cursor : count - 1
  const all = (shown.columns ?? []).map((column, index) => ({ column, index }))
  // Where there is no room for all columns, the minor ones are left out; where there is none for the others, rows are cards.
  const major = all.filter(({ column }) => !column.minor)
  const cards = width < leastWidth(major)
  const columns = !cards && width >= leastWidth(all) ? all : major
  const template = templateOf(
    columns.map(({ column }) => column),
    table.widths.value,
  )
  // Cards have no columns to name: only what orders them is left.
  const heads = columns.flatMap(({ column }) => (!cards || column.sorts ? [column] : []))
  const rowHeight = cards ? cardHeight() : lineHeight()

  useEffect(() => {
    const element = frame.current
    if (!element) return undefined
    const observer = new ResizeObserver(() => setWidth(element.clientWidth))
    observer.observe(element)
    setWidth(element.clientWidth)
    return () => observer.disconnect()
  }, [])
  // Another order or filter begins at the top.
  const first = useRef(true)
  useEffect(() => {
    if (first.current) {
      first.current = false
      return
    }
    handle.current?.toTop()
    setCursor(-1)
    anchor.current = -1
  }, [shown.sort, shown.filter])
  useLayoutEffect(() => {
    const by = table.moved.value
    if (by === 0) return
    table.moved.value = 0
    if (cursor >= 0) setCursor(Math.max(0, cursor + by))
    if (anchor.current >= 0) anchor.current = Math.max(0, anchor.current + by)
    handle.current?.shift(by)
  })

  const pick = (keys: string[]): void => {
    if (keys.length > mostChosen) toasts.add(m.tooManyChosen(mostChosen), { failed: true })
    else control.chooseKeys(keys)
  }
  const goTo = (position: number): void => {
    setCursor(position)
    handle.current?.reveal(position)
  }
  const chooseOne = (position: number): void => {
    anchor.current = position
    goTo(position)
    table.collect(position, position, keys => {
      if (keys?.length) pick(keys)
    })
  }
  const chooseTo = (position: number): void => {
    if (anchor.current < 0) anchor.current = Math.max(active, 0)
    const from = anchor.current
    goTo(position)
    if (Math.abs(position - from) >= mostChosen) return pick(Array(mostChosen + 1).fill(''))
    table.collect(from, position, keys => {
      if (keys) pick(keys)
    })
  }
  const toggle = (position: number): void => {
    anchor.current = position
    goTo(position)
    const key = table.row(position)?.key
    if (key !== undefined) pick(chosen.has(key) ? [...chosen].filter(other => other !== key) : [...chosen, key])
  }
  const onRowClick = (event: MouseEvent, position: number): void => {
    if (!shown.enabled) return
    handle.current?.element?.focus({ preventScroll: true })
    if (event.shiftKey) chooseTo(position)
    else if (event.ctrlKey || event.metaKey) toggle(position)
    else chooseOne(position)
  }
  const onKeyDown = (event: KeyboardEvent): void => {
    if (!shown.enabled || event.altKey || event.target !== handle.current?.element) return
    const held = event.ctrlKey || event.metaKey
    const move = keyTarget(event.key, active, count, handle.current?.pageSize() ?? 1)
    if (move !== undefined) {
      event.preventDefault()
      if (count === 0) return
      if (held) goTo(move)
      else if (event.shiftKey) chooseTo(move)
      else chooseOne(move)
    } else if (event.key === ' ') {
      event.preventDefault()
      if (active < 0) return
      if (event.shiftKey) chooseTo(active)
      else if (held || chosen.size > 0) toggle(active)
      else chooseOne(active)
    } else if (event.key === 'Enter') {
      event.preventDefault()
      const row = table.row(active)
      const target = row && linkOf(columns, row)
      if (target) location.hash = target
    } else if (held && event.key === 'a') {
      event.preventDefault()
      if (count === 0) return
      if (table.more || count > mostChosen) return pick(Array(mostChosen + 1).fill(''))
      table.collect(0, count - 1, keys => {
        if (keys) pick(keys)
      })
    } else if (event.key === 'Escape' && chosen.size > 0) {
      event.preventDefault()
      event.stopPropagation()
      control.chooseKeys([])
    } else if (event.key.length === 1 && !held) {
      const field = shown.filterField === undefined ? `${control.id}-filter` : control.form.controls.get(shown.filterField)?.id
      if (field) document.getElementById(field)?.focus()
    }
  }

  const filtered = (shown.filter ?? '') !== ''
  return (
    <Field
      control={control}
      shown={shown}
      class="table-field"
      rows={table.known ? Math.max(1, count) + 1 : 4}
      aside={
        <span class="count" aria-live="polite">
          {table.known ? m.rowCount(count, table.more) : ''}
          {chosen.size > 1 && <span class="table-chosen"> · {m.chosenRows(chosen.size)}</span>}
        </span>
      }
    >
      <div
        ref={frame}
        class="list-frame table-frame"
        data-filtering={table.stale ? '' : undefined}
        data-cards={cards ? '' : undefined}
        style={{ '--columns': template }}
      >
        {shown.filters && shown.filterField === undefined && <TableFilter control={control} />}
        {table.problem !== '' && (
          <p class="table-problem" role="alert">
            <Icon name="warning" />
            {table.problem}
          </p>
        )}
        <div class="list-view">
          <VirtualList
            handle={handle}
            count={count}
            rowHeight={rowHeight}
            onRange={(from, to) => table.show(from, to < from ? from : to)}
            head={heads.length > 0 && <Head control={control} columns={heads} edges={!cards} />}
            headHeight={heads.length > 0 ? lineHeight() : 0}
            id={control.id}
            class="list-rows table-rows"
            role="grid"
            tabIndex={shown.enabled ? 0 : -1}
            aria-disabled={!shown.enabled}
            aria-multiselectable={true}
            aria-rowcount={table.more ? -1 : count + 1}
            aria-colcount={columns.length}
            aria-activedescendant={active >= 0 ? `${control.id}-r${active}` : undefined}
            onKeyDown={onKeyDown}
            {...naming(control, shown)}
            row={position => {
              const row = table.row(position)
              return (
                <TableLine
                  key={position}
                  id={`${control.id}-r${position}`}
                  position={position}
                  height={rowHeight}
                  columns={columns}
                  cards={cards}
                  row={row}
                  chosen={row !== undefined && chosen.has(row.key)}
                  active={position === active}
                  onChoose={event => onRowClick(event, position)}
                />
              )
            }}
          />
          {table.known && count === 0 && table.problem === '' && (
            <p class="list-empty">{filtered ? m.noMatch : (shown.empty ?? m.noRows)}</p>
          )}
          {!table.known && <p class="list-empty">{m.loading}</p>}
        </div>
        <span class="visually-hidden" aria-live="polite">
          {active >= 0 && table.known ? m.rowOf(active + 1, count) : ''}
        </span>
      </div>
    </Field>
  )
}
