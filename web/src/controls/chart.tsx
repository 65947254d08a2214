import { useEffect, useLayoutEffect, useMemo, useRef, useState } from 'preact/hooks'
import type { ChartDrawing, Drawing } from '../chart/drawing'
import { messages } from '../i18n'
import { colourOf, isEmpty, sumOf, timeLabel } from '../model/chart'
import type { ControlModel } from '../model/form'
import { theme } from '../model/preferences'
import { Spinner } from '../parts/icon'
import type { ChartSeries } from '../wire/protocol'
import { tipId } from './field'

interface Label {
  short: string
  full: string
}

/** The same numbers for those who cannot see the drawing, and for those who want them exactly. */
function Numbers({ name, labels, series, shown }: { name: string; labels: readonly Label[]; series: readonly ChartSeries[]; shown: boolean }) {
  const m = messages.value
  return (
    <div class={shown ? 'chart-numbers' : 'visually-hidden'} tabIndex={shown ? 0 : undefined} role={shown ? 'group' : undefined} aria-label={shown ? name : undefined}>
      <table>
        <caption class="visually-hidden">{name}</caption>
        <thead>
          <tr>
            <th scope="col">{m.chartLabel}</th>
            {series.map(one => (
              <th key={one.name} scope="col">
                {one.caption}
              </th>
            ))}
          </tr>
        </thead>
        <tbody>
          {labels.map((label, place) => (
            <tr key={place}>
              <th scope="row">{label.full}</th>
              {series.map(one => (
                <td key={one.name}>{m.number(one.values[place] ?? 0)}</td>
              ))}
            </tr>
          ))}
        </tbody>
      </table>
    </div>
  )
}

/** Which series has which colour, with its sum: nothing is told by colour alone. */
function Legend({ series }: { series: readonly ChartSeries[] }) {
  return (
    <ul class="chart-legend">
      {series.map(one => (
        <li key={one.name}>
          <span class="chart-colour" style={{ '--colour': `var(${colourOf(one.tone ?? 'plain')})` }} />
          {one.caption}
          <b>{messages.value.number(sumOf(one.values))}</b>
        </li>
      ))}
    </ul>
  )
}

/** Numbers over labels. The drawing comes with a file of its own, when the first chart is shown; its place has its height before. */
export function ChartView({ control }: { control: ControlModel }) {
  const shown = control.shown.value
  const m = messages.value
  const canvas = useRef<HTMLCanvasElement>(null)
  const [drawn, setDrawn] = useState<ChartDrawing | null>(null)
  const [failed, setFailed] = useState(false)
  const [asTable, setAsTable] = useState(false)
  const [place, setPlace] = useState<number | null>(null)
  const series = shown.series ?? []
  const told = shown.labels
  const labels = useMemo<Label[]>(
    () => (told ?? []).map(label => (shown.times ? timeLabel(label, m.code) : { short: label, full: label })),
    [told, shown.times, m.code],
  )
  const drawing = useMemo<Drawing>(
    () => ({
      shape: shown.shape ?? 'bars',
      stacked: shown.stacked === true,
      labels: labels.map(label => label.short),
      fullLabels: labels.map(label => label.full),
      series: series.map(({ caption, tone, values }) => ({ caption, colour: colourOf(tone ?? 'plain'), values })),
      locale: m.code,
    }),
    [shown.shape, shown.stacked, labels, shown.series, m.code],
  )
  const newest = useRef(drawing)
  newest.current = drawing
  const usable = shown.enabled && labels.length > 0
  const click = useRef((_index: number): void => {})
  click.current = index => {
    if (usable) control.choose(index)
  }

  useEffect(() => {
    let left = false
    let made: ChartDrawing | null = null
    const begin = async (): Promise<void> => {
      const { ChartDrawing } = await import('../chart/drawing')
      if (left || !canvas.current) return
      made = new ChartDrawing(canvas.current, newest.current, index => click.current(index))
      setDrawn(made)
    }
    begin().catch(() => {
      setFailed(true)
      setAsTable(true)
    })
    return () => {
      left = true
      made?.dispose()
    }
  }, [control])
  useLayoutEffect(() => drawn?.draw(drawing), [drawn, drawing])
  // Colours are read from the style sheets, which follow the theme of the console or that of the machine.
  const themed = theme.value
  useEffect(() => {
    if (!drawn) return
    const redraw = (): void => drawn.draw(newest.current)
    const frame = requestAnimationFrame(redraw)
    const dark = matchMedia('(prefers-color-scheme: dark)')
    dark.addEventListener('change', redraw)
    return () => {
      cancelAnimationFrame(frame)
      dark.removeEventListener('change', redraw)
    }
  }, [drawn, themed])

  const at = Math.min(place ?? labels.length - 1, labels.length - 1)
  const show = (index: number | null): void => {
    setPlace(index)
    drawn?.show(index ?? -1)
  }
  const onKeyDown = (event: KeyboardEvent): void => {
    const last = labels.length - 1
    const next = { ArrowLeft: at - 1, ArrowDown: at - 1, ArrowRight: at + 1, ArrowUp: at + 1, Home: 0, End: last, PageUp: at + 6, PageDown: at - 6 }[event.key]
    if (next !== undefined) show(Math.max(0, Math.min(last, next)))
    else if (event.key === 'Enter' || event.key === ' ') click.current(at)
    else if (event.key === 'Escape' && place !== null) show(null)
    else return
    event.preventDefault()
    event.stopPropagation()
  }
  const name = shown.caption ?? ''
  const spoken = series.map(one => `${one.caption} ${m.number(one.values[at] ?? 0)}`).join(', ')
  return (
    <div class="field chart" data-control={control.id} data-disabled={shown.enabled ? undefined : ''}>
      <div class="field-head">
        <span class="field-label" id={`${control.id}-label`}>
          {name}
        </span>
        <Legend series={series} />
        <button type="button" class="button quiet small" aria-pressed={asTable} onClick={() => setAsTable(!asTable)} disabled={failed}>
          {m.chartAsTable}
        </button>
      </div>
      {shown.toolTip && (
        <span id={tipId(control)} hidden>
          {shown.toolTip}
        </span>
      )}
      <div
        id={control.id}
        class="chart-plot"
        hidden={asTable}
        role="slider"
        tabIndex={usable ? 0 : -1}
        aria-labelledby={`${control.id}-label`}
        aria-describedby={shown.toolTip ? tipId(control) : undefined}
        aria-disabled={usable ? undefined : true}
        aria-valuemin={0}
        aria-valuemax={Math.max(0, labels.length - 1)}
        aria-valuenow={Math.max(0, at)}
        aria-valuetext={labels[at] ? `${labels[at].full}: ${spoken}` : m.chartEmpty}
        onKeyDown={onKeyDown}
        onFocus={event => {
          if (event.currentTarget.matches(':focus-visible')) show(at)
        }}
        onBlur={() => show(null)}
      >
        <canvas ref={canvas} />
        {!drawn && !failed && (
          <p class="chart-note">
            <Spinner /> {m.loading}
          </p>
        )}
        {drawn && isEmpty(series) && <p class="chart-note">{m.chartEmpty}</p>}
      </div>
      <Numbers name={name} labels={labels} series={series} shown={asTable} />
    </div>
  )
}
