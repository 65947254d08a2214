/** A line of a report that tells how many there were of something. */
interface Count {
  readonly label: string
  /** As the line has it: "1200", or "35%". */
  readonly shown: string
  /** The bar's length, from 0 to 1: of the largest count, or of the whole for a percentage. */
  readonly share: number
  /** Whether an empty line stands before it in the report. */
  readonly begins: boolean
}

const pattern = /^(\d+)(%?) (.+)$/

/** The counts of a report; lines of another form are left out. */
export function countsOf(report: string): Count[] {
  let largest = 1
  let begins = false
  const found: { label: string; value: number; percent: boolean; begins: boolean }[] = []
  for (const line of report.split(/\r\n|\r|\n/)) {
    const parts = pattern.exec(line)
    if (parts) {
      const value = Number(parts[1])
      const percent = parts[2] === '%'
      if (!percent) largest = Math.max(largest, value)
      found.push({ label: parts[3]!, value, percent, begins: begins && found.length > 0 })
    }
    begins = line === ''
  }
  return found.map(({ label, value, percent, begins }) => ({
    label,
    shown: `${value}${percent ? '%' : ''}`,
    share: Math.min(1, value / (percent ? 100 : largest)),
    begins,
  }))
}
