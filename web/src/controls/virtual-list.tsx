import type { ComponentChildren } from 'preact'
import { useEffect, useImperativeHandle, useLayoutEffect, useReducer, useRef, useState } from 'preact/hooks'
import { recall, remember } from '../model/preferences'
import { ScrollMap } from '../model/scroll-map'

export interface VirtualListHandle {
  element: HTMLDivElement | null
  /** Brings a row into view with the least movement. */
  reveal(row: number): void
  toTop(): void
  /** Moves the view by so many rows. */
  shift(rows: number): void
  /** Whole rows that fit the view. */
  pageSize(): number
}

interface Props {
  count: number
  rowHeight: number
  /** Must give each row exactly the row height. */
  row: (position: number) => ComponentChildren
  onRange?: (first: number, last: number) => void
  handle: { current: VirtualListHandle | null }
  /** Under which name this tab remembers the place to which the list was scrolled. */
  place?: string | undefined
  /** What stays above the rows, of this height. */
  head?: ComponentChildren
  headHeight?: number
  /** The attributes of the scrolled element. */
  [attribute: string]: unknown
}

const overscan = 6
const settlingTime = 150
const keepingTime = 300
const mostFrames = 30

/** Draws only the rows that are on view, for any number of rows. */
export function VirtualList({ count, rowHeight, row, onRange, handle, place, head, headHeight = 0, ...attributes }: Props) {
  const element = useRef<HTMLDivElement>(null)
  const map = useRef(new ScrollMap()).current
  const settling = useRef<ReturnType<typeof setTimeout> | undefined>(undefined)
  const [, redraw] = useReducer<number, void>(n => n + 1, 0)
  const [viewHeight, setViewHeight] = useState(0)
  // Where the view has to stand, until it does; -1 otherwise.
  const target = useRef(-1)
  // A row that was to be revealed before the height of the view was known.
  const waiting = useRef(-1)
  const returned = useRef(false)
  const placing = useRef<ReturnType<typeof setTimeout> | undefined>(undefined)
  const keepPlace = (): void => {
    clearTimeout(placing.current)
    placing.current = setTimeout(() => {
      const row = Math.round(map.virtualTop / rowHeight)
      if (place) remember(place, row === 0 ? '' : String(row), 'tab')
    }, keepingTime)
  }
  map.configure(count, rowHeight, viewHeight)

  // A busy browser may lay a list that has just become longer out some frames later, even where it is asked to at once, and does not scroll
  // beyond the end that the list had before.
  const stand = (frames: number): void => {
    const scrolled = element.current
    if (!scrolled || target.current < 0) return
    scrolled.scrollTop = target.current
    const reached = Math.abs(scrolled.scrollTop - target.current) < 1 || scrolled.scrollHeight + 1 >= map.contentHeight
    if (reached || frames === 0) target.current = -1
    else requestAnimationFrame(() => stand(frames - 1))
  }
  const moveTo = (top: number): void => {
    const scrolled = element.current
    if (!scrolled) return
    target.current = map.moveTo(top)
    stand(mostFrames)
    redraw()
  }

  useImperativeHandle(handle, () => ({
    get element() {
      return element.current
    },
    reveal: position => {
      if (viewHeight === 0) {
        waiting.current = position
        return
      }
      const top = map.topShowing(position)
      if (top !== map.virtualTop) moveTo(top)
    },
    toTop: () => moveTo(0),
    shift: rows => moveTo(map.virtualTop + rows * rowHeight),
    pageSize: () => Math.max(1, Math.floor(viewHeight / rowHeight) - 1),
  }))

  useLayoutEffect(() => {
    const scrolled = element.current
    if (!scrolled) return undefined
    const measure = (): void => setViewHeight(Math.max(0, scrolled.clientHeight - headHeight))
    const observer = new ResizeObserver(measure)
    observer.observe(scrolled)
    measure()
    return () => {
      observer.disconnect()
      clearTimeout(settling.current)
      clearTimeout(placing.current)
    }
  }, [headHeight])

  // A shorter list or a higher view can leave the scroll position beyond the end.
  useLayoutEffect(() => {
    const scrolled = element.current
    const top = map.moveTo(map.virtualTop)
    if (scrolled && Math.abs(scrolled.scrollTop - top) >= 1) scrolled.scrollTop = top
    if (viewHeight === 0) return
    if (waiting.current >= 0) {
      moveTo(map.topShowing(waiting.current))
      waiting.current = -1
    } else if (!returned.current && count > 0) moveTo(Number((place && recall(place, 'tab')) ?? 0) * rowHeight)
    if (count > 0) returned.current = true
  }, [count, rowHeight, viewHeight])

  const onScroll = (): void => {
    const scrolled = element.current
    if (!scrolled || target.current >= 0) return
    map.onScroll(scrolled.scrollTop)
    redraw()
    keepPlace()
    if (!map.scaled) return
    clearTimeout(settling.current)
    settling.current = setTimeout(() => {
      scrolled.scrollTop = map.moveTo(map.virtualTop)
      redraw()
    }, settlingTime)
  }

  const firstSeen = count === 0 ? 0 : map.firstVisible()
  const lastSeen = count === 0 || viewHeight === 0 ? -1 : map.lastVisible()
  const first = Math.max(0, firstSeen - overscan)
  const last = lastSeen < 0 ? -1 : Math.min(count - 1, lastSeen + overscan)
  useEffect(() => onRange?.(first, last))

  const rows: ComponentChildren[] = []
  for (let position = first; position <= last; ++position) rows.push(row(position))
  return (
    <div ref={element} onScroll={onScroll} {...attributes}>
      {head}
      <div class="rows-height" role="presentation" style={{ height: `${map.contentHeight}px` }}>
        <div class="rows-layer" role="presentation" style={{ transform: `translateY(${count === 0 ? 0 : map.offsetOf(first)}px)` }}>
          {rows}
        </div>
      </div>
    </div>
  )
}
