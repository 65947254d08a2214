import { afterEach, describe, expect, it, vi } from 'vitest'
import { leastColumn, moved, recallWidths, rememberWidths, templateOf } from '../src/model/columns'
import type { Column } from '../src/wire/protocol'

const column = (name: string, kind: Column['kind']): Column => ({ name, caption: name, kind, sorts: false, minor: false })
const columns = [column('time', 'time'), column('from', 'text'), column('to', 'text')]

describe('the edge behind a column', () => {
  it('moves no other edge than it must, and fills the table', () => {
    expect(moved([200, 300, 100], 0, 50)).toEqual([250, 250, 100])
    expect(moved([200, 300, 100], 0, -50)).toEqual([150, 350, 100])
    expect(moved([200, 300, 100], 1, 20)).toEqual([200, 320, 80])
  })

  it('stops where a column would become too narrow, its own or the last behind it', () => {
    expect(moved([200, 300, 100], 0, -1000)).toEqual([leastColumn, 452, 100])
    expect(moved([200, 300, 100], 0, 280)).toEqual([480, leastColumn, 72])
    expect(moved([200, 300, 100], 0, Number.MAX_SAFE_INTEGER)).toEqual([504, leastColumn, leastColumn])
    expect(moved([200, 30, 100], 0, 10)).toEqual([210, 30, 90])
    expect(moved([200, 300, 100], 2, 50)).toEqual([200, 300, 100])
  })
})

describe('the widths of columns', () => {
  it('follow the kinds until somebody has changed one, and share what is left then', () => {
    expect(templateOf(columns, {})).toBe('13.5rem minmax(0, 1fr) minmax(0, 1fr)')
    expect(templateOf(columns, { time: 150, from: 300, to: 100 })).toBe(
      'minmax(48px, 150px) minmax(48px, 300fr) minmax(48px, 100fr)',
    )
    // A column that was not there when the others were changed.
    expect(templateOf(columns, { from: 300 })).toBe('13.5rem minmax(48px, 300fr) minmax(48px, 300fr)')
  })

  describe('on this device', () => {
    afterEach(() => void vi.unstubAllGlobals())

    it('are those of the table alone, and nothing else is taken for them', () => {
      const items = new Map<string, string>()
      vi.stubGlobal('localStorage', {
        getItem: (name: string) => items.get(name) ?? null,
        setItem: (name: string, value: string) => items.set(name, value),
      })
      rememberWidths('messages', 'rows', { time: 150 })
      expect(recallWidths('messages', 'rows')).toEqual({ time: 150 })
      expect(recallWidths('messages', 'details')).toEqual({})
      for (const odd of ['no JSON', 'null', '[1]', '{"time":"9999px","from":-1,"to":1e9}']) {
        for (const name of items.keys()) items.set(name, odd)
        expect(recallWidths('messages', 'rows')).toEqual({})
      }
    })
  })
})
