import { describe, expect, it } from 'vitest'
import { RowSelection } from '../src/model/selection'

describe('rows that are chosen together', () => {
  it('agree with a plain set, whatever is chosen in which order', () => {
    let random = 7
    const next = (limit: number): number => {
      random = (random * 1103515245 + 12345) % 2147483648
      return Math.floor((random / 2147483648) * limit)
    }
    let selection = RowSelection.none
    const plain = new Set<number>()
    for (let step = 0; step < 2000; ++step) {
      const [one, other] = [next(60), next(60)]
      if (next(3) === 0) {
        selection = selection.with(one, other)
        for (let row = Math.min(one, other); row <= Math.max(one, other); ++row) plain.add(row)
      } else {
        selection = selection.toggled(one)
        if (!plain.delete(one)) plain.add(one)
      }
      if (plain.size > 50) {
        selection = RowSelection.none
        plain.clear()
      }
      expect(selection.count).toBe(plain.size)
      expect([...Array(60).keys()].filter(row => selection.has(row))).toEqual([...plain].sort((a, b) => a - b))
      // The host takes ranges that count up.
      for (const [place, [first, last]] of selection.ranges.entries()) {
        expect(first).toBeLessThanOrEqual(last)
        expect(first).toBeGreaterThan(selection.ranges[place - 1]?.[1] ?? -1)
      }
    }
    expect(RowSelection.all(1_000_000).toggled(5).ranges).toEqual([
      [0, 4],
      [6, 999_999],
    ])
    expect(RowSelection.all(0).count).toBe(0)
  })
})
