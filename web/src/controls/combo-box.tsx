import { useEffect, useLayoutEffect, useRef, useState } from 'preact/hooks'
import { messages } from '../i18n'
import type { ControlModel } from '../model/form'
import type { ListModel } from '../model/list'
import { Icon } from '../parts/icon'
import { pushPopup } from '../parts/popups'
import { Field, naming } from './field'
import { rowHeight } from './list-box'
import { keyTarget, Row } from './list-row'
import { putText } from './text-field'
import { VirtualList, type VirtualListHandle } from './virtual-list'

const highestPopup = 320
const gap = 4
const typeAheadPause = 700

/** Puts the popup below its anchor, or above it where there is more room. */
function placePopup(popup: HTMLElement, anchor: HTMLElement, wantedHeight: number): void {
  const box = anchor.getBoundingClientRect()
  const below = innerHeight - box.bottom - 2 * gap
  const above = box.top - 2 * gap
  const up = below < Math.min(wantedHeight, 160) && above > below
  const height = Math.max(44, Math.min(wantedHeight, up ? above : below))
  const { style } = popup
  style.width = `${box.width}px`
  style.left = `${Math.max(0, Math.min(box.left, innerWidth - box.width))}px`
  style.height = `${height}px`
  style.top = `${up ? box.top - gap - height : box.bottom + gap}px`
}

export function ComboBox({ control }: { control: ControlModel }) {
  const shown = control.shown.value
  const list = control.list as ListModel
  void list.version.value
  const { cache } = list
  const m = messages.value
  const text = shown.editable ? control.text.value : (shown.text ?? '')
  const [open, setOpen] = useState(false)
  const [active, setActive] = useState(-1)
  const root = useRef<HTMLDivElement>(null)
  const input = useRef<HTMLInputElement>(null)
  const popup = useRef<HTMLDivElement>(null)
  const handle = useRef<VirtualListHandle>(null)
  const typed = useRef({ text: '', at: 0 })
  const count = cache.length
  const popupId = `${control.id}-popup`
  // A border of one pixel on either side.
  const wantedHeight = Math.min(highestPopup, Math.max(1, count) * rowHeight() + 10)

  useLayoutEffect(() => {
    if (input.current) putText(input.current, text)
  })
  useLayoutEffect(() => {
    if (!open || !popup.current || !root.current) return undefined
    placePopup(popup.current, root.current, wantedHeight)
    popup.current.showPopover()
    const close = (): void => setOpen(false)
    const release = pushPopup(close)
    const onScroll = (event: Event): void => {
      if (event.target instanceof Node && popup.current?.contains(event.target)) return
      if (popup.current && root.current) placePopup(popup.current, root.current, wantedHeight)
    }
    addEventListener('resize', close)
    document.addEventListener('scroll', onScroll, true)
    return () => {
      release()
      list.hide()
      removeEventListener('resize', close)
      document.removeEventListener('scroll', onScroll, true)
    }
  }, [open, wantedHeight])
  useEffect(() => {
    if (open && active >= 0) handle.current?.reveal(active)
  }, [open, active])
  useEffect(() => {
    if (!shown.enabled) setOpen(false)
  }, [shown.enabled])

  const show = (): void => {
    setActive(shown.index ?? -1)
    setOpen(true)
  }
  const choose = (position: number): void => {
    setOpen(false)
    if (position < 0 || position >= count) return
    control.choose(position, cache.row(position))
  }

  const typeAhead = (key: string): void => {
    const now = performance.now()
    const before = now - typed.current.at < typeAheadPause ? typed.current.text : ''
    typed.current = { text: before + key.toLowerCase(), at: now }
    for (let step = before === '' ? 1 : 0; step <= count; ++step) {
      const position = (Math.max(0, active) + step) % Math.max(1, count)
      if (!cache.row(position)?.toLowerCase().startsWith(typed.current.text)) continue
      setActive(position)
      return
    }
  }

  const onKeyDown = (event: KeyboardEvent): void => {
    if (event.ctrlKey || event.metaKey) return
    const { key } = event
    if (!open) {
      const opens = key === 'ArrowDown' || key === 'ArrowUp' || (!shown.editable && (key === 'Enter' || key === ' '))
      if (!opens) return
      event.preventDefault()
      show()
      return
    }
    if (key === 'Enter' || (key === ' ' && !shown.editable) || (key === 'ArrowUp' && event.altKey)) {
      event.preventDefault()
      choose(active)
    } else if (key === 'Tab') {
      if (active >= 0 && active !== shown.index) choose(active)
      else setOpen(false)
    } else {
      const moving = shown.editable && (key === 'Home' || key === 'End') ? undefined : key
      const target = moving && keyTarget(moving, active, count, handle.current?.pageSize() ?? 8)
      if (typeof target === 'number') {
        event.preventDefault()
        setActive(target)
      } else if (!shown.editable && key.length === 1) {
        event.preventDefault()
        typeAhead(key)
      }
    }
  }

  const names = naming(control, shown)
  const common = {
    id: control.id,
    role: 'combobox' as const,
    disabled: !shown.enabled,
    'aria-expanded': open,
    'aria-controls': popupId,
    'aria-haspopup': 'listbox' as const,
    'aria-activedescendant': open && active >= 0 ? `${control.id}-r${active}` : undefined,
    onKeyDown,
    ...names,
  }
  return (
    <Field control={control} shown={shown} class="combo-box" labelFor={control.id}>
      <div
        ref={root}
        class="combo"
        onFocusOut={event => {
          if (!(event.relatedTarget instanceof Node && root.current?.contains(event.relatedTarget))) setOpen(false)
        }}
      >
        {shown.editable ? (
          <>
            <input
              {...common}
              ref={input}
              class="input"
              type="text"
              dir="auto"
              autocomplete="off"
              aria-autocomplete="none"
              spellcheck={false}
              placeholder={shown.placeholder && m.example(shown.placeholder)}
              onInput={event => control.type(event.currentTarget.value)}
            />
            <button
              type="button"
              class="combo-toggle"
              tabIndex={-1}
              aria-label={m.openChoices}
              disabled={!shown.enabled}
              onMouseDown={event => event.preventDefault()}
              onClick={() => {
                input.current?.focus()
                if (open) setOpen(false)
                else show()
              }}
            >
              <Icon name="chevron" />
            </button>
          </>
        ) : (
          <button type="button" {...common} class="input combo-value" onClick={() => (open ? setOpen(false) : show())}>
            <bdi class="combo-text" dir="auto">
              {text || <span class="combo-placeholder">{shown.placeholder ?? '\u00a0'}</span>}
            </bdi>
            <Icon name="chevron" />
          </button>
        )}
        {open && (
          <div ref={popup} popover="manual" class="combo-popup" onMouseDown={event => event.preventDefault()}>
            <VirtualList
              handle={handle}
              count={count}
              rowHeight={rowHeight()}
              onRange={(first, last) => list.show(first, last)}
              id={popupId}
              class="list-rows"
              role="listbox"
              aria-labelledby={names['aria-labelledby']}
              aria-label={names['aria-label']}
              row={position => (
                <Row
                  key={position}
                  id={`${control.id}-r${position}`}
                  position={position}
                  count={count}
                  text={cache.row(position)}
                  selected={position === shown.index}
                  active={position === active}
                  choosing={{ onClick: () => choose(position) }}
                />
              )}
            />
            {count === 0 && <p class="list-empty">{m.emptyList}</p>}
          </div>
        )}
      </div>
    </Field>
  )
}
