import type { ListOrder, RowsMessage } from '../wire/protocol'

export const blockSize = 200

export interface RowRequest {
  request: number
  start: number
  count: number
  filter: string
  order: ListOrder
}

interface Block {
  rows: string[]
  indexes: number[] | null
  revision: number
}

/** The rows of one list that the browser holds: blocks fetched as they are shown.
 *  Blocks of an older revision or filter stay on view until their successors arrive, so that nothing flickers. */
export class RowCache {
  /** Rows that match the filter on view. */
  length: number
  /** The filter and the order of the rows on view; the wanted ones may be newer. */
  filter = ''
  order: ListOrder = 'added'
  private wantedFilter = ''
  private wantedOrder: ListOrder = 'added'
  private revision: number
  private total: number
  private blocks = new Map<number, Block>()
  /** What was asked of the wanted filter and the newest revision; answers to anything older are dropped. */
  private outstanding = new Map<number, { block: number; start: number }>()
  /** Numbers all requests about rows. */
  static nextRequest = 1
  private readonly keptBlocks: number

  constructor(total: number, revision: number, keptBlocks = 60) {
    this.total = total
    this.length = total
    this.revision = revision
    this.keptBlocks = keptBlocks
  }

  get wholeLength(): number {
    return this.total
  }

  /** True while the rows on view belong to an older filter or order than was asked for. */
  get filtering(): boolean {
    return this.filter !== this.wantedFilter || this.order !== this.wantedOrder
  }

  /** Whether all rows are on view in the order of the list: places on view are those in the list then. */
  private get whole(): boolean {
    return this.filter === '' && this.order === 'added'
  }

  /** What is wanted on view. */
  get wanted(): { filter: string; order: ListOrder } {
    return { filter: this.wantedFilter, order: this.wantedOrder }
  }

  get currentRevision(): number {
    return this.revision
  }

  setItems(total: number, revision: number): void {
    if (revision === this.revision && total === this.total) return
    this.total = total
    this.revision = revision
    if (this.filter === '') this.length = total
    this.outstanding.clear()
    this.dropBeyondEnd()
  }

  setView(view: { filter?: string; order?: ListOrder }): void {
    const { filter, order } = { ...this.wanted, ...view }
    if (filter === this.wantedFilter && order === this.wantedOrder) return
    this.wantedFilter = filter
    this.wantedOrder = order
    this.outstanding.clear()
  }

  /** A new connection knows nothing of what was asked on the old one. */
  forgetRequests(): void {
    this.outstanding.clear()
    for (const block of this.blocks.values()) block.revision = -1
  }

  row(position: number): string | undefined {
    const block = this.blocks.get(Math.floor(position / blockSize))
    return block?.rows[position % blockSize]
  }

  /** The place in the whole list of the row at a position of the view. */
  indexAt(position: number): number | undefined {
    if (this.whole) return position < this.length ? position : undefined
    return this.blocks.get(Math.floor(position / blockSize))?.indexes?.[position % blockSize]
  }

  /** The position on view of a row of the whole list, if it is known. */
  positionOf(index: number): number | undefined {
    if (index < 0) return undefined
    if (this.whole) return index < this.length ? index : undefined
    for (const [number, block] of this.blocks) {
      const place = block.indexes?.indexOf(index) ?? -1
      if (place >= 0) return number * blockSize + place
    }
    return undefined
  }

  /** The requests that the rows from first to last (inclusive) still need. */
  requestsFor(first: number, last: number): RowRequest[] {
    const requests: RowRequest[] = []
    const fresh = this.filtering
    const from = fresh ? 0 : Math.max(0, Math.floor(first / blockSize))
    const end = fresh ? 0 : Math.floor(Math.min(last, this.length - 1) / blockSize)
    if (!fresh && this.length === 0 && !(this.filter !== '' && this.stale(0))) return requests
    for (let block = from; block <= Math.max(0, end); ++block) {
      const held = fresh ? 0 : this.freshRows(block)
      const wanted = fresh ? 1 : Math.min(blockSize, this.length - block * blockSize, last + 1 - block * blockSize)
      if (held > 0 && held >= wanted) continue
      if (held === 0 && !fresh && !this.stale(block)) continue
      if (this.isOutstanding(block)) continue
      const request = RowCache.nextRequest++
      const start = block * blockSize + held
      this.outstanding.set(request, { block, start })
      requests.push({ request, start, count: blockSize - held, filter: this.wantedFilter, order: this.wantedOrder })
    }
    return requests
  }

  /** Takes an answer; false when it belongs to nothing that is still wanted. */
  accept(message: RowsMessage): boolean {
    const asked = this.outstanding.get(message.request)
    if (!asked) return false
    this.outstanding.delete(message.request)
    if (this.filtering) {
      this.blocks.clear()
      this.filter = this.wantedFilter
      this.order = this.wantedOrder
    }
    if (message.revision > this.revision) {
      this.revision = message.revision
      if (this.filter === '') this.total = message.length
    }
    this.length = message.length
    this.store(asked, message)
    this.dropBeyondEnd()
    this.trim(asked.block)
    return true
  }

  /** The host sends fewer rows than asked for where they are long; what follows is added to what is there. */
  private store({ block, start }: { block: number; start: number }, message: RowsMessage): void {
    const held = this.blocks.get(block)
    const before = start - block * blockSize
    const continues = before > 0 && held?.revision === message.revision && held.rows.length === before
    if (before > 0 && !continues) return
    this.blocks.delete(block)
    this.blocks.set(block, {
      rows: continues ? [...held.rows, ...message.rows] : message.rows,
      indexes: message.indexes ? [...((continues && held.indexes) || []), ...message.indexes] : null,
      revision: message.revision,
    })
  }

  /** How many rows of a block are of the newest revision. */
  private freshRows(block: number): number {
    const held = this.blocks.get(block)
    return held && held.revision >= this.revision ? held.rows.length : 0
  }

  private stale(block: number): boolean {
    const held = this.blocks.get(block)
    return !held || held.revision < this.revision
  }

  private isOutstanding(block: number): boolean {
    for (const asked of this.outstanding.values()) {
      if (asked.block === block) return true
    }
    return false
  }

  private dropBeyondEnd(): void {
    const last = Math.floor((this.length - 1) / blockSize)
    for (const number of this.blocks.keys()) if (number > last && number > 0) this.blocks.delete(number)
  }

  private trim(keep: number): void {
    for (const number of this.blocks.keys()) {
      if (this.blocks.size <= this.keptBlocks) return
      if (Math.abs(number - keep) > 2) this.blocks.delete(number)
    }
  }
}
