import { signal } from '@preact/signals'
import type { ActivityEntry, ActivityMessage, PlainMessage, RecordMessage } from '../wire/protocol'

const blockSize = 200
const scanSize = 500
const keptBlocks = 40

interface PlacedEntry extends ActivityEntry {
  position: number
}

/** The activity record as far as it is on view. The newest entry stands first. */
export class ActivityModel {
  readonly total = signal(0)
  /** The oldest entry that the record still has. */
  readonly oldest = signal(0)
  /** Failures since the drawer was last looked at. */
  readonly unseenFailures = signal(0)
  readonly open = signal(false)
  readonly failuresOnly = signal(false)
  readonly failures = signal<readonly PlacedEntry[]>([])
  /** True while the record is being searched for failures. */
  readonly scanning = signal(false)
  readonly version = signal(0)
  send: (message: PlainMessage) => boolean = () => false
  onAction: (message: ActivityMessage, steps: number) => void = () => {}

  private blocks = new Map<number, ActivityEntry[]>()
  private asked = new Map<number, { block: number } | { scanFrom: number; scanEnd: number }>()
  private nextRequest = 1
  /** The record is known to be searched for failures in [scannedFrom, scannedEnd). */
  private scannedFrom = 0
  private scannedEnd = 0
  /** The length of the record before the next action; unknown on a new connection. */
  private before: number | null = 0

  took(message: ActivityMessage): void {
    const { entries } = message
    const added = this.before === null ? 0 : message.total - this.before
    this.before = message.total
    this.grow(message.total)
    for (const [offset, entry] of entries.entries()) this.place(message.first + offset, entry)
    if (!this.open.peek()) this.unseenFailures.value += message.failed
    this.version.value++
    this.scan()
    this.onAction(message, Math.max(entries.length, added))
  }

  accept(message: RecordMessage): void {
    const asked = this.asked.get(message.request)
    if (!asked) return
    this.asked.delete(message.request)
    this.grow(message.total)
    this.before ??= message.total
    const askedFrom = 'block' in asked ? asked.block * blockSize : asked.scanFrom
    // A window that begins later than asked tells that the entries before it are gone.
    if (message.start > askedFrom) this.oldest.value = Math.max(this.oldest.peek(), message.start)
    if ('block' in asked) {
      for (const [offset, entry] of message.entries.entries()) this.place(message.start + offset, entry)
      for (const number of this.blocks.keys()) {
        if (this.blocks.size > keptBlocks && Math.abs(number - asked.block) > 2) this.blocks.delete(number)
      }
    } else {
      const found = message.entries
        .map((entry, offset) => ({ ...entry, position: message.start + offset }))
        .filter(entry => !entry.ok && !entry.expected && entry.position >= asked.scanFrom && entry.position < asked.scanEnd)
      this.failures.value = [...this.failures.peek(), ...found].sort((a, b) => b.position - a.position)
      if (asked.scanFrom < this.scannedFrom) this.scannedFrom = asked.scanFrom
      this.scannedEnd = Math.max(this.scannedEnd, asked.scanEnd)
      this.scanning.value = false
    }
    this.version.value++
    this.scan()
  }

  entry(position: number): ActivityEntry | undefined {
    return this.blocks.get(Math.floor(position / blockSize))?.[position % blockSize]
  }

  /** The record positions from first to last are on view. */
  show(from: number, last: number): void {
    const first = Math.max(from, this.oldest.peek())
    for (let block = Math.floor(first / blockSize); block <= Math.floor(last / blockSize); ++block) {
      const start = block * blockSize
      const end = Math.min(start + blockSize, this.total.peek())
      if (this.isAsked(block) || this.isComplete(Math.max(start, this.oldest.peek()), end)) continue
      const request = this.nextRequest++
      this.asked.set(request, { block })
      this.send({ type: 'record', request, start, count: blockSize })
    }
  }

  toggle(open: boolean): void {
    this.open.value = open
    if (!open) return
    this.unseenFailures.value = 0
    this.version.value++
    this.scan()
  }

  showFailures(only: boolean): void {
    this.failuresOnly.value = only
    this.scan()
  }

  reconnected(): void {
    this.blocks.clear()
    this.asked.clear()
    this.failures.value = []
    this.scannedFrom = this.scannedEnd = 0
    this.scanning.value = false
    this.oldest.value = 0
    this.before = null
    this.askFirst()
    this.version.value++
  }

  /** The record begins anew. */
  restarted(): void {
    this.total.value = 0
    this.reconnected()
    this.before = 0
  }

  reset(): void {
    this.open.value = false
    this.restarted()
    this.unseenFailures.value = 0
    this.failuresOnly.value = false
  }

  /** Asks for the oldest entry, to learn how long the record is. */
  private askFirst(): void {
    const request = this.nextRequest++
    this.asked.set(request, { block: 0 })
    this.send({ type: 'record', request, start: 0, count: 1 })
  }

  /** Searches the record for failures, the newest part first, one window at a time. */
  private scan(): void {
    if (!this.open.peek() || !this.failuresOnly.peek() || this.scanning.peek()) return
    const total = this.total.peek()
    if (this.scannedFrom === this.scannedEnd) this.scannedFrom = this.scannedEnd = total
    let start: number
    let end: number
    if (this.scannedEnd < total) {
      start = this.scannedEnd
      end = Math.min(total, start + scanSize)
    } else if (this.scannedFrom > this.oldest.peek()) {
      end = this.scannedFrom
      start = Math.max(this.oldest.peek(), end - scanSize)
    } else return
    const request = this.nextRequest++
    this.asked.set(request, { scanFrom: start, scanEnd: end })
    if (this.send({ type: 'record', request, start, count: end - start })) this.scanning.value = true
  }

  private grow(total: number): void {
    if (total < this.total.peek()) this.blocks.clear()
    this.total.value = total
  }

  private place(position: number, entry: ActivityEntry): void {
    const number = Math.floor(position / blockSize)
    let block = this.blocks.get(number)
    if (!block) this.blocks.set(number, (block = []))
    block[position % blockSize] = entry
  }

  private isComplete(start: number, end: number): boolean {
    for (let position = start; position < end; ++position) if (!this.entry(position)) return false
    return true
  }

  private isAsked(block: number): boolean {
    for (const asked of this.asked.values()) if ('block' in asked && asked.block === block) return true
    return false
  }
}
