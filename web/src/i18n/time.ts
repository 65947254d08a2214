/** A moment as people say it: the time alone if it was today. */
export function timeText(locale: string, at: Date, now: Date = new Date()): string {
  const time = new Intl.DateTimeFormat(locale, { hour: '2-digit', minute: '2-digit', hourCycle: 'h23' }).format(at)
  if (at.toDateString() === now.toDateString()) return time
  return `${new Intl.DateTimeFormat(locale, { day: 'numeric', month: 'long' }).format(at)}, ${time}`
}
