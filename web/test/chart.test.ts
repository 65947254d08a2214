import { expect, it } from 'vitest'
import { timeLabel } from '../src/model/chart'

it('writes the times of marks as the reader does, in the time of the console', () => {
  // 25 October 2026 has an hour twice in parts of Europe; nothing is converted.
  expect(timeLabel('2026-10-25 02:00', 'de')).toEqual({ short: '02:00', full: 'So., 25. Okt., 02:00' })
  expect(timeLabel('2026-11-01', 'en')).toEqual({ short: 'Nov 1', full: 'Sun, Nov 1, 2026' })
  expect(timeLabel('no time', 'en')).toEqual({ short: 'no time', full: 'no time' })
})
