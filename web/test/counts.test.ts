import { expect, test } from 'vitest'
import { countsOf } from '../src/model/counts'

test('a report is read line by line, other lines left out', () => {
  const report = '200 connections\r\n\r\n50 rejected <b>\r\n0 passed\r\n\r\n35% is the share\r\nno count\r\n% is empty\r\n'
  expect(countsOf(report)).toEqual([
    { label: 'connections', shown: '200', share: 1, begins: false },
    { label: 'rejected <b>', shown: '50', share: 0.25, begins: true },
    { label: 'passed', shown: '0', share: 0, begins: false },
    { label: 'is the share', shown: '35%', share: 0.35, begins: true },
  ])
  expect(countsOf('')).toEqual([])
  expect(countsOf('0 none\n150% too many')).toMatchObject([{ share: 0 }, { share: 1 }])
})
