/** Positions of rows, both included. */
export type Range = readonly [first: number, last: number]

/** The rows that are chosen together, as ranges that ascend without overlap, so that choosing a million rows costs as much as one. */
export class RowSelection {
  static readonly none = new RowSelection([])
  readonly ranges: readonly Range[]

  constructor(ranges: readonly Range[]) {
    this.ranges = ranges
  }

  static all(length: number): RowSelection {
    return length > 0 ? new RowSelection([[0, length - 1]]) : RowSelection.none
  }

  get count(): number {
    return this.ranges.reduce((sum, [first, last]) => sum + last - first + 1, 0)
  }

  has(position: number): boolean {
    return this.ranges.some(([first, last]) => first <= position && position <= last)
  }

  toggled(position: number): RowSelection {
    return this.has(position) ? this.without(position) : this.with(position, position)
  }

  /** With all rows between the two, whichever is first. */
  with(one: number, other: number): RowSelection {
    let first = Math.min(one, other)
    let last = Math.max(one, other)
    const apart: Range[] = []
    for (const range of this.ranges) {
      if (range[1] < first - 1 || range[0] > last + 1) apart.push(range)
      else {
        first = Math.min(first, range[0])
        last = Math.max(last, range[1])
      }
    }
    return new RowSelection([...apart, [first, last] as const].sort((a, b) => a[0] - b[0]))
  }

  private without(position: number): RowSelection {
    return new RowSelection(
      this.ranges.flatMap(([first, last]): Range[] => {
        if (position < first || position > last) return [[first, last]]
        const parts: Range[] = [
          [first, position - 1],
          [position + 1, last],
        ]
        return parts.filter(([from, to]) => from <= to)
      }),
    )
  }
}
