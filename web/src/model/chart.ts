import type { ChartSeries, Tone } from '../wire/protocol'

/** The custom property with a series' colour. */
export function colourOf(tone: Tone): string {
  switch (tone) {
    case 'good':
      return '--allowed'
    case 'bad':
      return '--rejected'
    case 'waiting':
      return '--series-5'
    case 'plain':
      return '--neutral'
  }
}

const pattern = /^(\d{4})-(\d\d)-(\d\d)(?: (\d\d):(\d\d))?$/

/** A label that is a time, as it stands below its mark and in full. One that is none stays as it is. */
export function timeLabel(label: string, locale: string): { short: string; full: string } {
  const parts = pattern.exec(label)
  if (!parts) return { short: label, full: label }
  const [year, month, day, hour, minute] = parts.slice(1).map(part => Number(part ?? 0)) as [number, number, number, number, number]
  // The console's local time, whatever the browser's: nothing is converted.
  const time = new Date(Date.UTC(year, month - 1, day, hour, minute))
  if (Number.isNaN(time.getTime())) return { short: label, full: label }
  const write = (options: Intl.DateTimeFormatOptions): string =>
    new Intl.DateTimeFormat(locale, { ...options, timeZone: 'UTC' }).format(time)
  const date: Intl.DateTimeFormatOptions = { weekday: 'short', day: 'numeric', month: 'short' }
  const clock: Intl.DateTimeFormatOptions = { hour: '2-digit', minute: '2-digit', hourCycle: 'h23' }
  return parts[4] === undefined
    ? { short: write({ day: 'numeric', month: 'short' }), full: write({ ...date, year: 'numeric' }) }
    : { short: write(clock), full: write({ ...date, ...clock }) }
}

export const sumOf = (values: readonly number[]): number => values.reduce((sum, value) => sum + value, 0)

export const isEmpty = (series: readonly ChartSeries[]): boolean => series.every(({ values }) => values.every(value => value === 0))
