import { useEffect, useLayoutEffect, useRef, useState } from 'preact/hooks'
import { pushPopup } from './popups'

const showDelay = 450
const hideDelay = 120
const gap = 8

interface Shown {
  text: string
  anchor: Element
}

const within = (box: DOMRect, x: number, y: number): boolean =>
  x >= box.left - gap && x <= box.right + gap && y >= box.top - gap && y <= box.bottom + gap

/** Beside, below or above what it explains: the first place where it covers no other control. */
function placeOf(anchor: Element, box: DOMRect, size: DOMRect): { left: number; top: number } {
  const within = (value: number, length: number, whole: number): number => Math.max(gap, Math.min(value, whole - length - gap))
  const left = within(box.left, size.width, innerWidth)
  // What does not fit in a field stands right below it.
  const hint = anchor.querySelector('.field-hint[data-on]')?.getBoundingClientRect()
  const bottom = Math.max(box.bottom, hint?.bottom ?? box.bottom)
  const places = [
    { left, top: bottom + gap },
    { left: box.right + gap, top: within(box.top, size.height, innerHeight) },
    { left, top: box.top - size.height - gap },
  ].filter(({ left, top }) => top >= gap && top + size.height <= innerHeight - gap && left + size.width <= innerWidth - gap)
  const others = [...document.querySelectorAll('[data-control]:not(.frame), .field-head, .frame-head')].filter(
    other => !other.contains(anchor) && !anchor.contains(other),
  )
  const covers = ({ left, top }: { left: number; top: number }): number =>
    others.filter(other => {
      const used = other.getBoundingClientRect()
      return left < used.right && used.left < left + size.width && top < used.bottom && used.top < top + size.height
    }).length
  const [best] = places.map(place => ({ ...place, covered: covers(place) })).sort((a, b) => a.covered - b.covered)
  return best ?? { left, top: within(bottom + gap, size.height, innerHeight) }
}

/** The one tool tip of the page. It belongs to whatever carries data-tip, stays while the pointer is on it, and goes with Escape. */
export function Tooltip() {
  const [shown, setShown] = useState<Shown | null>(null)
  const element = useRef<HTMLDivElement>(null)
  const current = useRef<Shown | null>(null)
  current.current = shown

  useEffect(() => {
    let timer: ReturnType<typeof setTimeout> | undefined
    const anchorOf = (target: EventTarget | null): Element | null =>
      target instanceof Element ? target.closest('[data-tip]') : null
    const show = (anchor: Element, delay: number): void => {
      clearTimeout(timer)
      const text = anchor.getAttribute('data-tip') ?? ''
      timer = text === '' ? setTimeout(() => setShown(null), hideDelay) : setTimeout(() => setShown({ text, anchor }), delay)
    }
    const hide = (delay: number): void => {
      clearTimeout(timer)
      timer = setTimeout(() => setShown(null), delay)
    }
    // What a click has moved under the pointer is not what somebody points at.
    let clicked = { x: -1, y: -1 }
    const onOver = (event: PointerEvent): void => {
      if (event.pointerType === 'touch' || (event.clientX === clicked.x && event.clientY === clicked.y)) return
      const anchor = anchorOf(event.target)
      if (anchor && anchor === current.current?.anchor) return clearTimeout(timer)
      const tip = element.current
      if (current.current && tip && within(tip.getBoundingClientRect(), event.clientX, event.clientY)) {
        return clearTimeout(timer)
      }
      if (anchor) show(anchor, current.current ? 80 : showDelay)
      else hide(hideDelay)
    }
    const onFocus = (event: FocusEvent): void => {
      const target = event.target
      if (!(target instanceof Element) || !target.matches(':focus-visible') || target.closest('.list-frame')) return
      const anchor = anchorOf(target)
      if (anchor) show(anchor, showDelay)
      else hide(0)
    }
    const onDown = (event: PointerEvent): void => {
      clicked = { x: event.clientX, y: event.clientY }
      const button = event.target instanceof Element ? event.target.closest('[data-tip-button]') : null
      if (!button) return hide(0)
    }
    const onClick = (event: MouseEvent): void => {
      const button = event.target instanceof Element ? event.target.closest('[data-tip-button]') : null
      const anchor = button && anchorOf(button)
      if (!anchor) return
      event.preventDefault()
      if (current.current?.anchor === anchor) hide(0)
      else show(anchor, 0)
    }
    const onScroll = (): void => {
      if (current.current) hide(0)
    }
    document.addEventListener('pointerover', onOver)
    document.addEventListener('focusin', onFocus)
    document.addEventListener('focusout', () => hide(hideDelay))
    document.addEventListener('pointerdown', onDown)
    document.addEventListener('click', onClick)
    document.addEventListener('scroll', onScroll, true)
    document.addEventListener('keydown', event => {
      if (event.key !== 'Escape') hide(0)
    })
    return () => clearTimeout(timer)
  }, [])

  useLayoutEffect(() => {
    const tip = element.current
    if (!shown || !tip) return undefined
    if (!shown.anchor.isConnected) {
      setShown(null)
      return undefined
    }
    // At its old place the edge of the window could make it narrower than it is.
    tip.style.left = '0'
    tip.style.top = '0'
    tip.showPopover()
    // A choice is as wide as its column, its text is not.
    const box = (shown.anchor.querySelector('.choice-label') ?? shown.anchor).getBoundingClientRect()
    const size = tip.getBoundingClientRect()
    const { left, top } = placeOf(shown.anchor, box, size)
    tip.style.left = `${left}px`
    tip.style.top = `${top}px`
    const release = pushPopup(() => setShown(null))
    return () => {
      release()
      tip.hidePopover()
    }
  }, [shown])

  return (
    <div ref={element} class="tooltip" popover="manual" aria-hidden="true">
      {shown?.text}
    </div>
  )
}
