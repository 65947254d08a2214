const units = ['byte', 'kilobyte', 'megabyte', 'gigabyte'] as const

/** "3.2 MB", in the language of the number format. */
export function sizeText(bytes: number, format: Intl.NumberFormat): string {
  let value = bytes
  let unit = 0
  while (value >= 1000 && unit < units.length - 1) {
    value /= 1000
    ++unit
  }
  const { locale } = format.resolvedOptions()
  return new Intl.NumberFormat(locale, {
    style: 'unit',
    unit: units[unit] ?? 'byte',
    unitDisplay: unit === 0 ? 'long' : 'short',
    maximumFractionDigits: value < 10 && unit > 0 ? 1 : 0,
  }).format(value)
}
