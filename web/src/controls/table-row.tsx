import { messages } from '../i18n'
import { addressOf } from '../model/address'
import { visibleText } from '../model/visible-text'
import { Icon } from '../parts/icon'
import { session } from '../state/app-state'
import type { Cell, Column, TableRow } from '../wire/protocol'
import { choosingByPress } from './list-row'

const longestCell = 300
const longestTitle = 3000

const textOf = (cell: Cell | undefined): string => (cell === undefined ? '' : typeof cell === 'string' ? cell : cell.text)

/** What people read in a cell that has no form of its own: of a page its title. */
function readableText(column: Column, cell: Cell | undefined): string {
  const text = textOf(cell)
  return column.kind === 'page' ? (session.hello.value?.pages.find(page => page.name === text)?.title ?? text) : text
}

/** Where a cell leads; undefined if nowhere. */
function targetOf(column: Column, cell: Cell | undefined): string | undefined {
  if (typeof cell === 'object' && cell.page !== undefined) return addressOf(cell.page, cell.query)
  const text = textOf(cell)
  return column.page !== undefined && text !== '' ? addressOf(column.page, text) : undefined
}

/** A column that is shown, and which of a row's cells is in it. */
export interface ShownColumn {
  column: Column
  index: number
}

/** Where the first link of a row leads. */
export function linkOf(columns: readonly ShownColumn[], row: TableRow): string | undefined {
  for (const { column, index } of columns) {
    const target = targetOf(column, row.cells[index])
    if (target !== undefined) return target
  }
  return undefined
}

const verdicts = ['rejected', 'allowed', 'neutral'] as const
type Verdict = (typeof verdicts)[number]
const isVerdict = (text: string): text is Verdict => (verdicts as readonly string[]).includes(text)

const severityIcons = { bad: 'critical', warning: 'warning', unknown: 'question' } as const
type Severity = keyof typeof severityIcons
const isSeverity = (text: string): text is Severity => text in severityIcons

/** "20260901081500" as people read it where its time is not known otherwise. */
const exactTime = (text: string): string => text.replace(/^(\d{4})(\d\d)(\d\d)(\d\d)(\d\d)(\d\d)$/, '$1-$2-$3 $4:$5:$6')

function Content({ column, cell, brief }: { column: Column; cell: Cell | undefined; brief: boolean }) {
  const m = messages.value
  const text = textOf(cell)
  if (column.kind === 'time') {
    const at = typeof cell === 'object' ? cell.at : undefined
    return (
      <time class="cell-text" title={brief && at !== undefined ? m.time(at) : exactTime(text)}>
        {at === undefined ? visibleText(text, longestCell) : brief ? m.briefTime(at) : m.time(at)}
      </time>
    )
  }
  if (column.kind === 'verdict' && isVerdict(text)) {
    return (
      <span class="verdict" data-verdict={text}>
        {m.verdicts[text]}
      </span>
    )
  }
  if (column.kind === 'severity' && isSeverity(text)) {
    return (
      <span class="severity" data-severity={text}>
        <Icon name={severityIcons[text]} />
        {m.severities[text]}
      </span>
    )
  }
  if (column.kind === 'check') {
    return (
      <span class="checked" data-checked={text === '1' ? '' : undefined}>
        {text === '1' ? <Icon name="check" /> : null}
        <span class={text === '1' ? 'visually-hidden' : 'check-open'}>{text === '1' ? m.done : m.open}</span>
      </span>
    )
  }
  const number = column.kind === 'number' && /^-?\d{1,15}$/.test(text)
  const shown = number ? m.number(Number(text)) : visibleText(readableText(column, cell), longestCell)
  const target = targetOf(column, cell)
  return target === undefined ? (
    <bdi class="cell-text" dir="auto">
      {shown}
    </bdi>
  ) : (
    <a class="cell-text link" href={target} tabIndex={-1} dir="auto">
      {shown}
    </a>
  )
}

interface LineProps {
  id: string
  position: number
  height: number
  columns: readonly ShownColumn[]
  cards: boolean
  row: TableRow | undefined
  chosen: boolean
  active: boolean
  onChoose: (event: MouseEvent) => void
}

export function TableLine({ id, position, height, columns, cards, row, chosen, active, onChoose }: LineProps) {
  const cell = ({ column, index }: ShownColumn, place: number) => (
    <div
      key={column.name}
      role="gridcell"
      aria-colindex={place + 1}
      class={`table-cell kind-${column.kind}`}
      data-empty={textOf(row?.cells[index]) === '' ? '' : undefined}
      onPointerEnter={event => {
        if (column.kind === 'time') return
        const inner = event.currentTarget.querySelector<HTMLElement>('.cell-text')
        if (!inner) return
        event.currentTarget.title = inner.scrollWidth > inner.clientWidth ? visibleText(readableText(column, row?.cells[index]), longestTitle) : ''
      }}
    >
      {cards && column.kind === 'number' && <span class="card-caption">{column.caption}</span>}
      {row === undefined ? <span class="row-waiting" /> : <Content column={column} cell={row.cells[index]} brief={cards} />}
    </div>
  )
  const part = (texts: boolean) =>
    columns.flatMap((shown, place) => ((shown.column.kind === 'text') === texts ? [cell(shown, place)] : []))
  return (
    <div
      id={id}
      role="row"
      aria-rowindex={position + 2}
      aria-selected={chosen}
      class={`table-line${cards ? ' card' : ''}${active ? ' active' : ''}`}
      style={{ height: `${height}px` }}
      {...choosingByPress(event => {
        // A link is followed; the row stays as it is.
        if (!(event.target instanceof Element && event.target.closest('a'))) onChoose(event)
      })}
    >
      {cards ? (
        <>
          <div role="presentation" class="card-line">
            {part(false)}
          </div>
          <div role="presentation" class="card-line">
            {part(true)}
          </div>
        </>
      ) : (
        columns.map(cell)
      )}
    </div>
  )
}
