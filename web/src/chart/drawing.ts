import {
  BarController,
  BarElement,
  CategoryScale,
  Chart,
  LinearScale,
  LineController,
  LineElement,
  PointElement,
  Tooltip,
  type ChartDataset,
} from 'chart.js'

Chart.register(BarController, BarElement, CategoryScale, LinearScale, LineController, LineElement, PointElement, Tooltip)

export interface DrawnSeries {
  caption: string
  /** A custom property of the style sheets, "--danger". */
  colour: string
  values: readonly number[]
}

export interface Drawing {
  shape: 'bars' | 'lines'
  stacked: boolean
  /** As they stand below the marks, and in full. */
  labels: readonly string[]
  fullLabels: readonly string[]
  series: readonly DrawnSeries[]
  /** A language tag, for numbers. */
  locale: string
}

type Dataset = ChartDataset<'bar' | 'line', number[]>

/** Draws numbers on a canvas. A mark is all that stands at one label. */
export class ChartDrawing {
  private readonly chart: Chart<'bar' | 'line', number[], string>
  private readonly canvas: HTMLCanvasElement
  private drawn: Drawing

  constructor(canvas: HTMLCanvasElement, drawing: Drawing, onClick: (index: number) => void) {
    this.canvas = canvas
    this.drawn = drawing
    this.chart = new Chart(canvas, {
      type: drawing.shape === 'bars' ? 'bar' : 'line',
      data: { labels: [], datasets: [] },
      options: {
        animation: false,
        maintainAspectRatio: false,
        interaction: { mode: 'index', intersect: false },
        onClick: (_event, elements) => {
          const index = elements[0]?.index
          if (index !== undefined) onClick(index)
        },
        onHover: (_event, elements) => {
          canvas.style.cursor = elements.length > 0 ? 'pointer' : 'default'
        },
        plugins: {
          tooltip: {
            // The lowest part of a stack is told last, as it is seen.
            itemSort: (left, right) => (drawing.stacked ? right.datasetIndex - left.datasetIndex : left.datasetIndex - right.datasetIndex),
            usePointStyle: true,
            callbacks: { title: items => this.drawn.fullLabels[items[0]?.dataIndex ?? 0] ?? '' },
          },
        },
      },
    })
    this.draw(drawing)
  }

  draw(drawing: Drawing): void {
    this.drawn = drawing
    const colour = this.colours()
    const { chart } = this
    const { options, data } = chart
    // Numbers beside an empty drawing would only be made up.
    const empty = drawing.series.every(({ values }) => values.every(value => value === 0))
    options.locale = drawing.locale
    options.font = { family: getComputedStyle(this.canvas).fontFamily, size: 12 }
    options.color = colour('--text-2')
    const ticks = { color: colour('--text-2'), maxRotation: 0, autoSkipPadding: 16 }
    options.scales = {
      x: { stacked: drawing.stacked, grid: { display: false }, border: { color: colour('--border-strong') }, ticks },
      y: {
        stacked: drawing.stacked,
        beginAtZero: true,
        // Without numbers the scale still has a height.
        suggestedMax: 4,
        border: { display: false },
        grid: { color: colour('--border'), display: !empty },
        ticks: { display: !empty, color: colour('--text-2'), precision: 0, maxTicksLimit: 6 },
      },
    }
    Object.assign(options.plugins?.tooltip ?? {}, {
      backgroundColor: colour('--surface'),
      titleColor: colour('--text'),
      bodyColor: colour('--text'),
      borderColor: colour('--border-strong'),
      borderWidth: 1,
      padding: 10,
      boxPadding: 6,
    })
    data.labels = [...drawing.labels]
    // Series that are there already keep their places on the canvas.
    data.datasets.length = Math.min(data.datasets.length, drawing.series.length)
    drawing.series.forEach((series, place) => {
      const dataset = (data.datasets[place] ??= { data: [] })
      Object.assign(dataset, this.datasetOf(series, drawing, colour))
    })
    chart.update('none')
  }

  /** Shows the numbers of this mark, as the pointer does; -1 hides them. */
  show(index: number): void {
    const { chart } = this
    const marks = index < 0 ? [] : this.drawn.series.map((_, datasetIndex) => ({ datasetIndex, index }))
    const at = index < 0 ? undefined : chart.getDatasetMeta(0).data[index]
    chart.setActiveElements(marks)
    chart.tooltip?.setActiveElements(marks, { x: at?.x ?? 0, y: at?.y ?? 0 })
    chart.update('none')
  }

  dispose(): void {
    this.chart.destroy()
  }

  private datasetOf(series: DrawnSeries, drawing: Drawing, colour: (name: string) => string): Partial<Dataset> {
    const plain = colour(series.colour)
    const common = { label: series.caption, data: [...series.values], backgroundColor: plain, borderColor: plain }
    if (drawing.shape === 'bars') return { ...common, maxBarThickness: 48, borderRadius: 2, categoryPercentage: 0.86, barPercentage: 0.94 }
    return { ...common, borderWidth: 2, pointRadius: 0, pointHoverRadius: 4, tension: 0.25, fill: false }
  }

  /** What custom properties yield here: the canvas knows neither them nor light-dark(). */
  private colours(): (name: string) => string {
    const probe = document.createElement('span')
    // With a transition it would have the colour before for a moment.
    probe.style.setProperty('transition', 'none', 'important')
    this.canvas.after(probe)
    const found = new Map<string, string>()
    const colour = (name: string): string => {
      const known = found.get(name)
      if (known !== undefined) return known
      probe.style.color = `var(${name})`
      const value = getComputedStyle(probe).color
      found.set(name, value)
      return value
    }
    // Read at once, so that the probe can go.
    for (const name of ['--text', '--text-2', '--border', '--border-strong', '--surface', ...this.drawn.series.map(one => one.colour)]) {
      colour(name)
    }
    probe.remove()
    return colour
  }
}
