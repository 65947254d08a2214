import { signal } from '@preact/signals'
import type { Items, PlainMessage, RowsMessage } from '../wire/protocol'
import { RowCache } from './row-cache'

const mostOutstanding = 4

/** One list of a form: its rows as far as they are shown, and what is asked for. */
export class ListModel {
  /** Counts whatever changes the view. */
  readonly version = signal(0)
  readonly cache: RowCache
  private readonly form: string
  private readonly control: string
  private readonly send: (message: PlainMessage) => boolean
  private first = 0
  private last = -1
  private asked = new Set<number>()

  constructor(form: string, control: string, items: Items, send: (message: PlainMessage) => boolean) {
    this.form = form
    this.control = control
    this.send = send
    this.cache = new RowCache(items.length, items.revision)
  }

  setItems(items: Items): void {
    this.cache.setItems(items.length, items.revision)
    this.asked.clear()
    this.changed()
  }

  setFilter(filter: string): void {
    this.cache.setFilter(filter)
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

  accept(message: RowsMessage): void {
    this.asked.delete(message.request)
    if (this.cache.accept(message)) this.changed()
    else this.pump()
  }

  reconnected(items: Items): void {
    this.cache.forgetRequests()
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
