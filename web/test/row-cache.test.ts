import { describe, expect, it } from 'vitest'
import { blockSize, RowCache, type RowRequest } from '../src/model/row-cache'

/** Answers like the host: a window of the rows that match. */
function answer(rows: string[], revision: number, { request, start, count, filter }: RowRequest) {
  const matching = rows.map((text, index) => ({ text, index })).filter(row => row.text.includes(filter))
  const shown = matching.slice(start, start + count)
  return {
    type: 'rows' as const,
    form: 'f',
    control: 'c',
    request,
    revision,
    filter,
    length: matching.length,
    start,
    rows: shown.map(row => row.text),
    ...(filter === '' ? {} : { indexes: shown.map(row => row.index) }),
  }
}

const numbered = (count: number, prefix = 'row'): string[] => Array.from({ length: count }, (_, n) => `${prefix} ${n}`)

function fill(cache: RowCache, rows: string[], revision: number, first: number, last: number): void {
  for (const request of cache.requestsFor(first, last)) cache.accept(answer(rows, revision, request))
}

describe('the rows of a list', () => {
  it('asks for the blocks on view once', () => {
    const cache = new RowCache(1000, 1)
    const requests = cache.requestsFor(blockSize - 5, blockSize + 5)
    expect(requests.map(({ start, count }) => [start, count])).toEqual([
      [0, blockSize],
      [blockSize, blockSize],
    ])
    expect(cache.requestsFor(blockSize - 5, blockSize + 5)).toEqual([])
    for (const request of requests) cache.accept(answer(numbered(1000), 1, request))
    expect(cache.row(blockSize)).toBe(`row ${blockSize}`)
    expect(cache.requestsFor(0, 10)).toEqual([])
  })

  it('keeps the old rows on view until those of a new revision arrive', () => {
    const cache = new RowCache(300, 1)
    fill(cache, numbered(300), 1, 0, 20)
    cache.setItems(300, 2)
    expect(cache.row(3)).toBe('row 3')
    const [request] = cache.requestsFor(0, 20)
    expect(request).toBeDefined()
    cache.accept(answer(numbered(300, 'new'), 2, request!))
    expect(cache.row(3)).toBe('new 3')
  })

  it('drops an answer that was asked for before the list changed', () => {
    const cache = new RowCache(300, 1)
    const [old] = cache.requestsFor(0, 20)
    cache.setItems(5, 2)
    expect(cache.accept(answer(numbered(300), 1, old!))).toBe(false)
    expect(cache.length).toBe(5)
    fill(cache, numbered(5, 'new'), 2, 0, 4)
    expect(cache.row(4)).toBe('new 4')
  })

  it('believes an answer that is newer than what was told', () => {
    const cache = new RowCache(300, 1)
    fill(cache, numbered(300), 1, 0, 250)
    cache.setItems(300, 2)
    const [request] = cache.requestsFor(0, 20)
    cache.accept(answer(numbered(90, 'newest'), 3, request!))
    expect(cache.length).toBe(90)
    expect(cache.wholeLength).toBe(90)
    cache.setItems(90, 3)
    expect(cache.requestsFor(0, 20)).toEqual([])
  })

  it('shows the old filter until the new one is answered, and only the newest', () => {
    const rows = numbered(1000)
    const cache = new RowCache(1000, 1)
    fill(cache, rows, 1, 0, 20)
    cache.setView({ filter: '9' })
    const [first] = cache.requestsFor(500, 520)
    expect(first).toMatchObject({ start: 0, filter: '9' })
    cache.setView({ filter: '99' })
    const [second] = cache.requestsFor(500, 520)
    expect(cache.accept(answer(rows, 1, first!))).toBe(false)
    expect([cache.row(3), cache.length, cache.filtering]).toEqual(['row 3', 1000, true])
    cache.accept(answer(rows, 1, second!))
    expect([cache.row(0), cache.length, cache.wholeLength, cache.filtering]).toEqual(['row 99', 19, 1000, false])
    expect(cache.indexAt(1)).toBe(199)
    expect(cache.positionOf(199)).toBe(1)
    expect(cache.positionOf(3)).toBeUndefined()
  })

  it('asks again for a filter without matches when the list changes', () => {
    const cache = new RowCache(10, 1)
    cache.setView({ filter: 'none' })
    fill(cache, numbered(10), 1, 0, 9)
    expect(cache.length).toBe(0)
    expect(cache.requestsFor(0, 0)).toEqual([])
    cache.setItems(11, 2)
    fill(cache, [...numbered(10), 'none'], 2, 0, 0)
    expect([cache.length, cache.row(0), cache.indexAt(0)]).toEqual([1, 'none', 10])
  })

  it('asks for the rest where the host sends less than it was asked for', () => {
    const rows = numbered(1000)
    const cache = new RowCache(1000, 1)
    const short = (filter: string) => {
      for (let turn = 0; turn < 20; ++turn) {
        for (const request of cache.requestsFor(0, 150)) cache.accept(answer(rows, 1, { ...request, count: 60 }))
      }
      expect(cache.filter).toBe(filter)
    }
    short('')
    expect([cache.row(59), cache.row(60), cache.row(150)]).toEqual(['row 59', 'row 60', 'row 150'])
    expect(cache.requestsFor(0, 150)).toEqual([])
    cache.setView({ filter: '7' })
    short('7')
    expect([cache.row(100), cache.indexAt(100)]).toEqual(['row 557', 557])
    expect(cache.requestsFor(0, 150)).toEqual([])
  })

  it('stays small however far one scrolls', () => {
    const cache = new RowCache(1_000_000, 1, 5)
    const rows = numbered(100_000)
    for (let block = 0; block < 20; ++block) fill(cache, rows, 1, block * blockSize, block * blockSize)
    expect(cache.row(0)).toBeUndefined()
    expect(cache.row(19 * blockSize)).toBe(`row ${19 * blockSize}`)
  })

  it('asks anew on a new connection, with the rows still on view', () => {
    const cache = new RowCache(10, 7)
    fill(cache, numbered(10), 7, 0, 9)
    cache.forgetRequests()
    cache.setItems(10, 1)
    expect(cache.row(2)).toBe('row 2')
    fill(cache, numbered(10, 'again'), 1, 0, 9)
    expect(cache.row(2)).toBe('again 2')
  })
})
