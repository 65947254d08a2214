import { useLayoutEffect, useRef, useState } from 'preact/hooks'
import { messages } from '../i18n'
import { Icon } from '../parts/icon'
import { activity, session, toasts } from '../state/app-state'
import { topmost } from '../parts/top-layer'
import { DownloadLink } from './offered-files'

const lastUsed: { element: Element | null } = { element: null }

export function followUse(): void {
  document.addEventListener('pointerdown', event => {
    lastUsed.element = event.target instanceof Element ? event.target : null
  })
  document.addEventListener('focusin', event => {
    lastUsed.element = event.target instanceof Element ? event.target : null
  })
}

const overlap = (a: DOMRect, b: DOMRect): boolean =>
  a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom

/** The notices stand at the lower edge, and move to the upper one where they would cover what is being used. */
export function ToastsView() {
  const region = useRef<HTMLElement>(null)
  const [up, setUp] = useState(false)
  const shown = toasts.shown.value
  const dialog = topmost()
  const m = messages.value
  useLayoutEffect(() => {
    const element = region.current
    const used = lastUsed.element?.closest('button, input, textarea, label, [role="listbox"], a')
    if (!element || shown.length === 0) return
    // A popover that is shown last lies above the dialogs that are open.
    if (element.matches(':popover-open')) element.hidePopover()
    element.showPopover()
    element.dataset.up = ''
    const atTop = element.getBoundingClientRect()
    delete element.dataset.up
    const atBottom = element.getBoundingClientRect()
    const box = used?.isConnected ? used.getBoundingClientRect() : null
    const covers = box !== null && overlap(atBottom, box) && !overlap(atTop, box)
    if (covers) element.dataset.up = ''
    setUp(covers)
  }, [shown, dialog])
  const newest = shown.at(-1)
  return (
    <>
    <p class="visually-hidden" aria-live="polite">
      {newest && `${newest.text} ${newest.detail}`}
    </p>
    <section
      ref={region}
      class="toasts"
      popover="manual"
      data-up={up ? '' : undefined}
      aria-label={m.notices}
      onPointerEnter={() => toasts.hold(true)}
      onPointerLeave={() => toasts.hold(false)}
    >
      {shown.map(toast => (
        <div key={toast.id} class={`toast${toast.failed ? ' failed' : toast.neutral ? ' neutral' : ''}${toast.file ? '' : ' passing'}`}>
          <Icon name={toast.failed ? 'warning' : toast.file ? 'page' : toast.neutral ? 'info' : 'check'} />
          <div class="toast-text">
            <p dir="auto">
              {toast.text} {toast.count > 1 && <span class="toast-count">{m.times(toast.count)}</span>}
            </p>
            {toast.detail !== '' && (
              <p class="toast-detail" dir="auto">
                {toast.detail}
              </p>
            )}
          </div>
          {toast.file && <DownloadLink file={toast.file} short onFetch={() => toasts.dismiss(toast.id)} />}
          {toast.failed && !session.blocked.value && (
            <button
              type="button"
              class="button quiet small"
              onClick={() => {
                toasts.dismiss(toast.id)
                activity.toggle(true)
              }}
            >
              {m.showActivity}
            </button>
          )}
          <button type="button" class="icon-button small" aria-label={m.dismiss} onClick={() => toasts.dismiss(toast.id)}>
            <Icon name="close" />
          </button>
        </div>
      ))}
    </section>
    </>
  )
}
