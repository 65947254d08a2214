import { signal } from '@preact/signals'
import type { Items, ListOrder, PlainMessage, RowsMessage } from '../wire/protocol'
import { RowCache } from './row-cache'
import { RowSelection } from './selection'

const mostOutstanding = 4

/** A row that was looked for. */
export interface FoundRow {
  index: number
  /** On view; null where the filter hides it. */
  position: number | null
}

/** One list of a form: its rows as far as they are shown, and what is asked for. */
export class ListModel {
  /** Counts whatever changes the view. */
  readonly version = signal(0)
  readonly cache: RowCache
  /** The rows that are chosen together. They are places on view, so another view has none of them. */
  readonly selection = signal(RowSelection.none)
  /** The row that was added last, until the list or the choice changes. */
  readonly added = signal<FoundRow | null>(null)
  /** A row that is to be brought into view, once. */
  readonly wanted = signal<FoundRow | null>(null)
  private readonly form: string
  private readonly control: string
  private readonly send: (message: PlainMessage) => boolean
  private first = 0
  private last = -1
  private asked = new Set<number>()
  private searches = new Map<number, (found: FoundRow | null) => void>()

  constructor(form: string, control: string, items: Items, send: (message: PlainMessage) => boolean) {
    this.form = form
    this.control = control
    this.send = send
    this.cache = new RowCache(items.length, items.revision)
  }

  setItems(items: Items): void {
    if (items.revision !== this.cache.currentRevision) {
      this.selection.value = RowSelection.none
      this.added.value = null
    }
    this.cache.setItems(items.length, items.revision)
    this.asked.clear()
    this.changed()
  }

  setView(view: { filter?: string; order?: ListOrder }): void {
    this.cache.setView(view)
    this.selection.value = RowSelection.none
    this.asked.clear()
    this.changed()
  }

  /** The rows from first to last are on view now. */
  show(first: number, last: number): void {
    this.first = first
    this.last = last
    this.pump()
  }

  hide(): void {
    this.last = -1
  }

  /** Asks where a row is, by its place in the list or by its text. */
  seek(row: { index: number } | { find: string }, tell: (found: FoundRow | null) => void): void {
    const request = RowCache.nextRequest++
    this.searches.set(request, tell)
    const { form, control } = this
    const sent = this.send({ type: 'rows', form, control, request, start: 0, count: 0, ...this.cache.wanted, ...row })
    if (!sent) this.searches.delete(request)
  }

  /** Marks the row with this text, which has just been added, and brings it into view. */
  showAdded(text: string): void {
    if (text === '') return
    this.seek({ find: text }, found => {
      if (!found) return
      this.added.value = found
      if (found.position !== null) {
        this.wanted.value = found
        return
      }
      this.setView({ filter: '' })
      this.seek({ index: found.index }, again => {
        this.wanted.value = again
      })
    })
  }

  accept(message: RowsMessage): void {
    const search = this.searches.get(message.request)
    if (search) {
      this.searches.delete(message.request)
      search(message.found ?? null)
      return
    }
    this.asked.delete(message.request)
    if (this.cache.accept(message)) this.changed()
    else this.pump()
  }

  reconnected(items: Items): void {
    this.cache.forgetRequests()
    this.searches.clear()
    this.asked.clear()
    this.setItems(items)
  }

  private changed(): void {
    this.version.value++
    this.pump()
  }

  private pump(): void {
    // A filter is answered even while no row is on view, or an empty list would never fill again.
    if (this.last < this.first && !this.cache.filtering && this.cache.length > 0) return
    if (this.asked.size >= mostOutstanding) return
    for (const request of this.cache.requestsFor(this.first, Math.max(this.first, this.last))) {
      this.asked.add(request.request)
      this.send({ type: 'rows', form: this.form, control: this.control, ...request })
    }
  }
}
