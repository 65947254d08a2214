/** Browsers limit the height of an element, so a very long list gets a shorter scrollable height and positions are
 *  mapped in proportion. Small movements (wheel, touch) stay 1:1, large ones (dragging the bar) are mapped. */
export const maximumHeight = 10_000_000

export class ScrollMap {
  /** What a list of unlimited height would have as its scroll position. */
  virtualTop = 0
  private scrollTop = 0
  private rowCount = 0
  private rowHeight = 1
  private viewHeight = 0

  configure(rowCount: number, rowHeight: number, viewHeight: number): void {
    this.rowCount = rowCount
    this.rowHeight = rowHeight
    this.viewHeight = viewHeight
    this.virtualTop = this.clamp(this.virtualTop)
  }

  get virtualHeight(): number {
    return this.rowCount * this.rowHeight
  }

  get contentHeight(): number {
    return Math.min(this.virtualHeight, maximumHeight)
  }

  get scaled(): boolean {
    return this.virtualHeight > maximumHeight
  }

  /** The element was scrolled, by whatever means. */
  onScroll(scrollTop: number): void {
    const delta = scrollTop - this.scrollTop
    // The browser rounds the positions that it is told; such an echo is no movement.
    if (this.scaled && Math.abs(delta) < 1) return
    this.scrollTop = scrollTop
    if (!this.scaled) this.virtualTop = this.clamp(scrollTop)
    else if (scrollTop <= 0) this.virtualTop = 0
    else if (scrollTop >= this.contentHeight - this.viewHeight - 1) this.virtualTop = this.virtualHeight - this.viewHeight
    else if (Math.abs(delta) <= this.viewHeight) this.virtualTop = this.clamp(this.virtualTop + delta)
    else this.virtualTop = this.clamp(scrollTop * this.ratio())
  }

  /** Moves to a position and tells where the element has to be scrolled. */
  moveTo(virtualTop: number): number {
    this.virtualTop = this.clamp(virtualTop)
    this.scrollTop = this.settled()
    return this.scrollTop
  }

  /** Where the element's scroll position belongs; small 1:1 movements make it drift. */
  settled(): number {
    return this.scaled ? this.virtualTop / this.ratio() : this.virtualTop
  }

  /** The scroll position that brings a row into view with the least movement. */
  topShowing(row: number): number {
    const top = row * this.rowHeight
    if (top < this.virtualTop) return top
    const bottom = top + this.rowHeight
    if (bottom > this.virtualTop + this.viewHeight) return bottom - this.viewHeight
    return this.virtualTop
  }

  firstVisible(): number {
    return Math.max(0, Math.min(this.rowCount - 1, Math.floor(this.virtualTop / this.rowHeight)))
  }

  lastVisible(): number {
    return Math.min(this.rowCount - 1, Math.floor((this.virtualTop + Math.max(0, this.viewHeight - 1)) / this.rowHeight))
  }

  /** The offset inside the scrolled content at which a row has to be drawn. */
  offsetOf(row: number): number {
    const top = row * this.rowHeight
    return this.scaled ? this.scrollTop + (top - this.virtualTop) : top
  }

  private clamp(value: number): number {
    return Math.max(0, Math.min(value, this.virtualHeight - this.viewHeight))
  }

  private ratio(): number {
    return (this.virtualHeight - this.viewHeight) / Math.max(1, this.contentHeight - this.viewHeight)
  }
}
