import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest'
import { EntryFinder } from '../src/model/entry-search'
import type { EntryHit, PlainMessage } from '../src/wire/protocol'

const hit = (text: string): EntryHit => ({ page: 'domainbw', control: 'List2', frame: 'Black list', text })

let sent: PlainMessage[]
let finder: EntryFinder
const lastRequest = () => (sent.at(-1) as { request: number }).request
const answer = (texts: string[], next: { list: number; row: number } | null = null, request = lastRequest()) =>
  finder.accept({ type: 'entries', request, text: '', hits: texts.map(hit), next })

beforeEach(() => {
  vi.useFakeTimers()
  sent = []
  finder = new EntryFinder(message => sent.push(message) > 0)
})
afterEach(() => vi.useRealTimers())

describe('the search for entries', () => {
  it('asks once for what is typed in a row, and not for a single letter', () => {
    for (const query of ['r', 'ro', 'roy ']) finder.look(query)
    vi.runAllTimers()
    finder.look('x')
    vi.runAllTimers()
    expect(sent).toMatchObject([{ type: 'find', text: 'roy' }])
    expect(finder.searching.value).toBe(false)
  })

  it('asks for no more than the host takes', () => {
    finder.look('ä😀'.repeat(100))
    vi.runAllTimers()
    const { text } = sent.at(-1) as { text: string }
    expect(text).toBe('ä😀'.repeat(42) + 'ä')
    expect(new TextEncoder().encode(text).length).toBeLessThanOrEqual(256)
  })

  it('goes on where the host stopped, until there are enough', () => {
    finder.look('royal')
    vi.runAllTimers()
    answer(['a'], { list: 0, row: 70_000 })
    expect(sent.at(-1)).toMatchObject({ text: 'royal', from: { list: 0, row: 70_000 } })
    expect(finder.searching.value).toBe(true)
    answer(['a', ...Array.from({ length: 25 }, (_, n) => `b${n}`)], { list: 3, row: 0 })
    expect(finder.hits.value.map(found => found.text).slice(0, 2)).toEqual(['a', 'b0'])
    expect(finder.hits.value).toHaveLength(20)
    expect(finder.searching.value).toBe(false)
    expect(sent).toHaveLength(2)
  })

  it('takes no answer to what was typed before', () => {
    finder.look('royal')
    vi.runAllTimers()
    const stale = lastRequest()
    finder.look('spam')
    vi.runAllTimers()
    answer(['royal.example'], null, stale)
    expect(finder.hits.value).toEqual([])
    answer(['spam.example'])
    expect(finder.hits.value).toEqual([hit('spam.example')])
  })
})
