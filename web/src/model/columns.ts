import type { Column } from '../wire/protocol'
import { recall, remember } from './preferences'

/** The widths of columns by their names, in pixels. Where a table has been given none, its columns follow their kinds. */
export type Widths = Readonly<Record<string, number>>

/** A column that people have made narrow can still be taken hold of. */
export const leastColumn = 48
const widest = 10_000

const kinds = {
  time: '13.5rem',
  verdict: '7rem',
  number: '6.5rem',
  address: '9rem',
  word: '7rem',
  severity: '8rem',
  check: '5.5rem',
  page: '10rem',
  text: 'minmax(0, 1fr)',
} as const

const placeOf = (form: string, control: string): string => `columns ${form} ${control}`

/** What this device remembers of a table. */
export function recallWidths(form: string, control: string): Widths {
  try {
    const kept: unknown = JSON.parse(recall(placeOf(form, control), 'device') ?? '{}')
    if (typeof kept !== 'object' || kept === null) return {}
    return Object.fromEntries(
      Object.entries(kept).filter(([, width]) => typeof width === 'number' && width >= leastColumn && width <= widest),
    )
  } catch {
    return {}
  }
}

export function rememberWidths(form: string, control: string, widths: Widths): void {
  remember(placeOf(form, control), JSON.stringify(widths), 'device')
}

/** The columns of the grid that head and rows have in common. Texts share what the others leave, in the ratio of their widths, so that
 *  the table is filled and never wider than its frame. */
export function templateOf(columns: readonly Column[], widths: Widths): string {
  if (!columns.some(column => widths[column.name] !== undefined)) return columns.map(column => kinds[column.kind]).join(' ')
  const texts = columns.filter(column => column.kind === 'text')
  const given = texts.flatMap(column => widths[column.name] ?? [])
  const usual = given.length > 0 ? given.reduce((sum, width) => sum + width, 0) / given.length : 1
  return columns
    .map(column => {
      const width = widths[column.name]
      if (column.kind === 'text') return `minmax(${leastColumn}px, ${width ?? usual}fr)`
      return width === undefined ? kinds[column.kind] : `minmax(${leastColumn}px, ${width}px)`
    })
    .join(' ')
}

/** The widths after the edge behind a column was moved: what it gains the columns behind it lose, the nearest first, and what it loses
 *  the next one gains. Their sum stays. */
export function moved(widths: readonly number[], place: number, by: number): number[] {
  const result = [...widths]
  const own = widths[place] ?? 0
  const next = widths[place + 1]
  if (next === undefined) return result
  if (by <= 0) {
    const lost = Math.min(-by, Math.max(0, own - leastColumn))
    result[place] = own - lost
    result[place + 1] = next + lost
    return result
  }
  let gained = 0
  for (let other = place + 1; other < widths.length && gained < by; ++other) {
    const given = Math.min(by - gained, Math.max(0, (widths[other] ?? 0) - leastColumn))
    result[other] = (widths[other] ?? 0) - given
    gained += given
  }
  result[place] = own + gained
  return result
}
