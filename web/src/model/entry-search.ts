import { signal } from '@preact/signals'
import type { EntriesMessage, EntryHit, PlainMessage } from '../wire/protocol'

const pause = 120
const mostHits = 20
const shortest = 2
/** In bytes of UTF-8: the host takes no longer text. */
const longest = 256

/** As much of the text as the host takes. */
function beginning(text: string): string {
  const encoder = new TextEncoder()
  let size = 0
  let end = 0
  for (const character of text) {
    size += encoder.encode(character).length
    if (size > longest) break
    end += character.length
  }
  return text.slice(0, end)
}

/** Looks for entries of all lists while somebody types. The host answers with what it finds in a short time, and is asked to go on until
 *  there are enough, or nothing is left. */
export class EntryFinder {
  readonly hits = signal<readonly EntryHit[]>([])
  readonly searching = signal(false)
  private readonly send: (message: PlainMessage) => boolean
  private text = ''
  private request = 0
  private timer: ReturnType<typeof setTimeout> | undefined

  constructor(send: (message: PlainMessage) => boolean) {
    this.send = send
  }

  look(query: string): void {
    const text = beginning(query.trim())
    if (text === this.text) return
    this.text = text
    ++this.request
    clearTimeout(this.timer)
    this.hits.value = []
    this.searching.value = text.length >= shortest
    if (this.searching.peek()) this.timer = setTimeout(() => this.ask(), pause)
  }

  accept(message: EntriesMessage): void {
    if (message.request !== this.request) return
    const known = new Set(this.hits.peek().map(hit => `${hit.page}/${hit.control}/${hit.text}`))
    const fresh = message.hits.filter(hit => !known.has(`${hit.page}/${hit.control}/${hit.text}`))
    this.hits.value = [...this.hits.peek(), ...fresh].slice(0, mostHits)
    const { next } = message
    if (next && this.hits.peek().length < mostHits) this.ask(next)
    else this.searching.value = false
  }

  private ask(from?: { list: number; row: number }): void {
    const { request, text } = this
    if (!this.send({ type: 'find', request, text, ...(from && { from }) })) this.searching.value = false
  }
}
