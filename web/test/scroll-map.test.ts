import { describe, expect, it } from 'vitest'
import { maximumHeight, ScrollMap } from '../src/model/scroll-map'

const rowHeight = 28
const viewHeight = 600

function mapOf(rows: number): ScrollMap {
  const map = new ScrollMap()
  map.configure(rows, rowHeight, viewHeight)
  return map
}

describe('scrolling a list', () => {
  it('is the browser’s own while the list is short', () => {
    const map = mapOf(20_000)
    expect(map.scaled).toBe(false)
    map.onScroll(2810)
    expect([map.firstVisible(), map.offsetOf(100)]).toEqual([100, 2800])
    map.onScroll(map.contentHeight - viewHeight)
    expect(map.lastVisible()).toBe(19_999)
  })

  it.each([1_000_000, 5_000_000])('reaches both ends and the middle of %d rows', rows => {
    const map = mapOf(rows)
    expect(map.contentHeight).toBe(maximumHeight)
    map.onScroll(map.contentHeight - viewHeight)
    expect(map.lastVisible()).toBe(rows - 1)
    // The last row ends where the content ends, so that it is drawn inside it.
    expect(map.offsetOf(rows - 1) + rowHeight).toBeCloseTo(map.contentHeight, 3)
    map.onScroll((map.contentHeight - viewHeight) / 2)
    expect(Math.abs(map.firstVisible() - rows / 2)).toBeLessThan(20)
    map.onScroll(0)
    expect(map.firstVisible()).toBe(0)
  })

  it('moves small steps one to one and never loses a row to them', () => {
    const map = mapOf(1_000_000)
    let top = map.moveTo(500_000 * rowHeight)
    for (let step = 1; step <= 50; ++step) {
      map.onScroll((top += 100))
      expect(map.virtualTop).toBeCloseTo(500_000 * rowHeight + step * 100, 3)
    }
    const before = map.virtualTop
    // Settling brings the bar to its proportional place and leaves the rows where they are.
    const settled = map.moveTo(map.virtualTop)
    map.onScroll(settled + 0.4)
    expect(map.virtualTop).toBe(before)
  })

  it('brings a row into view with the least movement', () => {
    const map = mapOf(1_000_000)
    expect(map.topShowing(3)).toBe(0)
    map.moveTo(map.topShowing(999_999))
    expect(map.lastVisible()).toBe(999_999)
    map.moveTo(map.topShowing(999_990))
    expect(map.lastVisible()).toBe(999_999)
    map.moveTo(map.topShowing(400))
    expect(map.firstVisible()).toBe(400)
  })

  it('comes back when the list becomes shorter', () => {
    const map = mapOf(1_000_000)
    map.moveTo(map.topShowing(999_999))
    map.configure(10, rowHeight, viewHeight)
    expect([map.virtualTop, map.firstVisible(), map.lastVisible()]).toEqual([0, 0, 9])
  })
})
