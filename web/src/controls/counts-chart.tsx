import { countsOf } from '../model/counts'

/** The counts of a report as bars. One colour and a number at each bar: nothing is told by colour alone. */
export function CountsChart({ report, name }: { report: string; name: string }) {
  const counts = countsOf(report)
  if (counts.length === 0) return null
  return (
    <ul class="counts-chart" aria-label={name}>
      {counts.map(({ label, shown, share, begins }) => (
        <li key={label} data-begins={begins ? '' : undefined}>
          <span class="count-label">{label}</span>
          <span class="count-bar">
            <span style={{ width: `${share * 100}%` }} />
          </span>
          <span class="count-number">{shown}</span>
        </li>
      ))}
    </ul>
  )
}
