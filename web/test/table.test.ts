import { expect, test } from 'vitest'
import { addressOf, parseAddress } from '../src/model/address'
import { TableModel } from '../src/model/table'
import type { CellsMessage, PlainMessage } from '../src/wire/protocol'

type Asked = Extract<PlainMessage, { type: 'cells' }>

/** A host with a table of numbered rows, the newest first. */
class Host {
  rows: number[]
  more = false
  asked: Asked[] = []
  readonly table: TableModel
  revision = 1

  constructor(count: number) {
    this.rows = Array.from({ length: count }, (_, place) => count - place)
    this.table = new TableModel('page', 'rows', 1, message => {
      this.asked.push(message as Asked)
      return true
    })
  }

  answerOne(): void {
    const asked = this.asked.shift()
    if (!asked) throw new Error('nothing was asked')
    const rows = this.rows.slice(asked.start, asked.start + asked.count)
    const message: CellsMessage = {
      type: 'cells',
      form: 'page',
      control: 'rows',
      request: asked.request,
      revision: this.revision,
      length: this.rows.length,
      more: this.more,
      start: asked.start,
      rows: rows.map(row => ({ key: String(row), cells: [`row ${row}`] })),
      problem: '',
    }
    if (asked.key !== undefined) {
      const found = this.rows.indexOf(Number(asked.key))
      message.found = found < 0 ? null : found
    }
    this.table.accept(message)
  }

  answer(): void {
    for (let answers = 0; this.asked.length > 0; ++answers) {
      if (answers > 20) throw new Error('asks for ever')
      this.answerOne()
    }
  }

  change(rows: number[]): void {
    this.rows = rows
    this.table.setRevision(++this.revision)
  }

  keys(first: number, last: number): (string | undefined)[] {
    return Array.from({ length: last - first + 1 }, (_, place) => this.table.row(first + place)?.key)
  }
}

test('asks for the windows on view, and for none twice', () => {
  const host = new Host(1000)
  host.table.show(0, 20)
  host.answer()
  expect(host.table.length).toBe(1000)
  expect(host.keys(0, 2)).toEqual(['1000', '999', '998'])
  host.table.show(5, 30)
  expect(host.asked).toEqual([])
  host.table.show(90, 110)
  expect(host.asked.map(asked => [asked.start, asked.count])).toEqual([[100, 100]])
  host.answer()
  host.table.show(990, 999)
  host.answer()
  expect(host.keys(998, 999)).toEqual(['2', '1'])
})

test('an empty table is asked once for each revision', () => {
  const host = new Host(0)
  host.table.show(0, -1)
  host.answer()
  host.table.show(0, -1)
  expect(host.asked).toEqual([])
  host.change([1])
  host.answer()
  expect(host.keys(0, 0)).toEqual(['1'])
})

test('new rows above keep the place of those on view, and are seen by whoever is at the top', () => {
  const host = new Host(1000)
  host.table.show(300, 320)
  host.answer()
  const before = host.keys(300, 320)
  host.change([1003, 1002, 1001, ...host.rows])
  host.answer()
  expect(host.table.moved.value).toBe(3)
  expect(host.keys(303, 323)).toEqual(before)
  host.table.moved.value = 0

  host.table.show(0, 20)
  host.answer()
  expect(host.keys(0, 0)).toEqual(['1003'])
  host.change([1004, ...host.rows])
  host.answer()
  expect(host.table.moved.value).toBe(0)
  expect(host.keys(0, 1)).toEqual(['1004', '1003'])
})

test('rows that are gone leave the view, also those at its end', () => {
  const host = new Host(50)
  host.table.show(0, 49)
  host.answer()
  host.change(host.rows.filter(row => row !== 50 && row > 5))
  host.answer()
  expect(host.table.length).toBe(44)
  expect(host.keys(0, 0)).toEqual(['49'])
  expect(host.keys(44, 49)).toEqual(Array(6).fill(undefined))
  host.change([])
  host.answer()
  expect(host.keys(0, 3)).toEqual(Array(4).fill(undefined))
})

test('an answer about an older state is not shown', () => {
  const host = new Host(10)
  host.table.show(0, 9)
  const [asked] = host.asked
  host.table.setRevision(2)
  host.table.accept({
    type: 'cells', form: 'page', control: 'rows', request: asked!.request, revision: 1,
    length: 1, more: false, start: 0, rows: [{ key: 'old', cells: ['old'] }], problem: '',
  })
  expect(host.table.row(0)).toBeUndefined()
})

test('the keys of a range are fetched as far as they are not held', () => {
  const host = new Host(1000)
  host.table.show(0, 20)
  host.answer()
  const told: (string[] | null)[] = []
  host.table.collect(3, 1, keys => told.push(keys))
  expect(told).toEqual([['999', '998', '997']])
  host.table.collect(0, 700, keys => told.push(keys))
  host.answer()
  expect(told[1]?.length).toBe(701)
  expect(told[1]?.[700]).toBe('300')
  host.table.collect(0, 700, keys => told.push(keys))
  host.change([1])
  expect(told[2]).toBeNull()
})

test('addresses hold any query', () => {
  for (const query of ['', '198.51.100.0/24', 'from:"a b"#%25', 'ä/ö']) {
    expect(parseAddress(addressOf('lookup', query))).toEqual({ page: 'lookup', query })
  }
  expect(parseAddress('#/lookup/50%')).toEqual({ page: 'lookup', query: '50%' })
  expect(parseAddress('')).toEqual({ page: '', query: '' })
})
