import { signal } from '@preact/signals'
import type { CellsMessage, PlainMessage, TableRow } from '../wire/protocol'
import { recallWidths, rememberWidths, type Widths } from './columns'

const windowSize = 100
const longestWindow = 500
const keptRows = 5000

interface Held {
  row: TableRow
  revision: number
}

interface Asked {
  request: number
  start: number
  count: number
  /** The key whose place is asked for, and where its row is on view. */
  anchor?: { key: string; position: number }
}

interface Collection {
  first: number
  next: number
  last: number
  keys: string[]
  tell: (keys: string[] | null) => void
  request: number
}

/** The rows of a table as far as the browser holds them. Those of an older revision stay on view until their successors come. */
export class TableModel {
  static nextRequest = 1
  /** Counts whatever changes the view. */
  readonly version = signal(0)
  /** By how many rows the view has to move so that the rows on it stay where they are; whoever moves it sets it to 0. */
  readonly moved = signal(0)
  /** What people have made of the columns, here or before on this device. */
  readonly widths = signal<Widths>({})
  length = 0
  /** There are more rows than `length`. */
  more = false
  problem = ''
  /** Whether the host has answered at all. */
  known = false
  private readonly form: string
  private readonly control: string
  private readonly send: (message: PlainMessage) => boolean
  private revision: number
  private rows = new Map<number, Held>()
  private asked: Asked | null = null
  private collection: Collection | null = null
  private first = 0
  private last = windowSize - 1

  constructor(form: string, control: string, revision: number, send: (message: PlainMessage) => boolean) {
    this.form = form
    this.control = control
    this.send = send
    this.revision = revision
    this.widths.value = recallWidths(form, control)
  }

  resize(widths: Widths): void {
    this.widths.value = { ...this.widths.peek(), ...widths }
  }

  keepWidths(): void {
    rememberWidths(this.form, this.control, this.widths.peek())
  }

  row(position: number): TableRow | undefined {
    return this.rows.get(position)?.row
  }

  /** Where a row is, if it is held. */
  positionOf(key: string): number | undefined {
    for (const [position, held] of this.rows) if (held.row.key === key) return position
    return undefined
  }

  /** True while rows of an older order, filter or state are on view. */
  get stale(): boolean {
    const held = this.rows.get(this.first)
    return this.known && held !== undefined && held.revision < this.revision
  }

  /** The host has other rows now. */
  setRevision(revision: number): void {
    if (revision === this.revision) return
    this.revision = revision
    this.asked = null
    this.collection?.tell(null)
    this.collection = null
    this.pump()
  }

  /** The order or the filter was changed: what was on view is somewhere else, and the view begins anew. */
  restart(): void {
    this.first = 0
    this.last = windowSize - 1
  }

  reconnected(revision: number): void {
    this.revision = revision
    this.asked = null
    this.collection = null
    for (const held of this.rows.values()) held.revision = -1
    this.pump()
  }

  /** The rows from first to last are on view now. */
  show(first: number, last: number): void {
    this.first = first
    this.last = Math.max(first, last)
    this.pump()
  }

  /** The keys of the rows between two positions, both included; null if the rows have changed meanwhile. */
  collect(one: number, other: number, tell: (keys: string[] | null) => void): void {
    const [first, last] = one < other ? [one, other] : [other, one]
    const keys: string[] = []
    for (let position = first; position <= last; ++position) {
      const held = this.rows.get(position)
      if (!held || held.revision < this.revision) break
      keys.push(held.row.key)
    }
    if (keys.length === last - first + 1) return tell(keys)
    this.collection = { first, next: first, last, keys: [], tell, request: 0 }
    this.collectMore()
  }

  accept(message: CellsMessage): void {
    if (this.collection?.request === message.request) return this.collected(message)
    const { asked } = this
    if (asked?.request !== message.request) return
    this.asked = null
    if (message.revision < this.revision) return this.pump()
    this.revision = message.revision
    this.known = true
    this.length = message.length
    this.more = message.more
    this.problem = message.problem
    const shift = asked.anchor && typeof message.found === 'number' ? message.found - asked.anchor.position : 0
    if (shift !== 0) this.shift(shift)
    this.store(asked, message)
    this.version.value++
    this.pump()
  }

  /** The host refused to tell. */
  refused(request: number): void {
    if (this.asked?.request === request) this.asked = null
  }

  private store(asked: Asked, message: CellsMessage): void {
    message.rows.forEach((row, place) => this.rows.set(message.start + place, { row, revision: message.revision }))
    // What the host has no longer must not stay on view.
    const end = message.start + message.rows.length
    if (message.rows.length === 0 || end >= this.length) {
      for (const position of this.rows.keys()) if (position >= Math.max(end, this.length)) this.rows.delete(position)
    }
    if (message.rows.length === 0) this.barren = { revision: message.revision, start: asked.start }
    if (message.rows.length === 0) for (let i = asked.start; i < asked.start + asked.count; ++i) this.rows.delete(i)
    for (const position of this.rows.keys()) {
      if (this.rows.size <= keptRows) break
      if (Math.abs(position - asked.start) > keptRows / 2) this.rows.delete(position)
    }
  }

  /** Rows have come before the ones on view, or have gone. */
  private shift(by: number): void {
    const moved = new Map<number, Held>()
    for (const [position, held] of this.rows) if (position + by >= 0) moved.set(position + by, held)
    this.rows = moved
    this.first = Math.max(0, this.first + by)
    this.last = Math.max(this.first, this.last + by)
    this.moved.value += by
  }

  private fresh(position: number): boolean {
    return this.rows.get(position)?.revision === this.revision
  }

  private pump(): void {
    if (this.asked) return
    let start = 0
    if (this.known && this.length > 0) {
      const end = Math.min(this.last, this.length - 1)
      start = Math.min(this.first, this.length - 1)
      while (start <= end && this.fresh(start)) ++start
      if (start > end) return
    }
    if (this.barren.revision === this.revision && this.barren.start === start) return
    const held = this.rows.get(this.first)
    // Whoever is at the top sees what is new there; whoever reads further down keeps the place.
    const anchor =
      held && held.revision < this.revision && this.first > 0 ? { key: held.row.key, position: this.first } : undefined
    const request = TableModel.nextRequest++
    this.asked = { request, start, count: windowSize, ...(anchor ? { anchor } : {}) }
    const { form, control } = this
    const sent = this.send({ type: 'cells', form, control, request, start, count: windowSize, ...(anchor ? { key: anchor.key } : {}) })
    if (!sent) this.asked = null
  }

  /** Where nothing was found, which is not asked again and again. */
  private barren = { revision: -1, start: -1 }

  private collectMore(): void {
    const wanted = this.collection
    if (!wanted) return
    wanted.request = TableModel.nextRequest++
    const { form, control } = this
    const count = Math.min(longestWindow, wanted.last - wanted.next + 1)
    if (!this.send({ type: 'cells', form, control, request: wanted.request, start: wanted.next, count })) {
      this.collection = null
      wanted.tell(null)
    }
  }

  private collected(message: CellsMessage): void {
    const wanted = this.collection
    if (!wanted) return
    wanted.keys.push(...message.rows.map(row => row.key))
    wanted.next += message.rows.length
    if (message.rows.length > 0 && wanted.next <= wanted.last) return this.collectMore()
    this.collection = null
    wanted.tell(wanted.keys)
  }
}
