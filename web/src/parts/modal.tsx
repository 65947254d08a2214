import type { ComponentChildren } from 'preact'
import { useId, useLayoutEffect, useRef } from 'preact/hooks'
import { messages } from '../i18n'
import { Icon } from './icon'
import { popupOpen } from './popups'
import { enterTopLayer } from './top-layer'

interface Props {
  title: string
  onCancel: () => void
  class?: string
  /** The element that tells what this is about, where the title alone does not. */
  describedBy?: string
  role?: 'alertdialog'
  closable?: boolean
  icon?: ComponentChildren
  children: ComponentChildren
}

const focusable = ':is(a[href], button, input, select, textarea, [tabindex="0"]):not(:disabled)'

/** Tab goes round in the dialog; by itself it would leave it for the browser's own buttons. */
function keepInside(event: KeyboardEvent, dialog: HTMLDialogElement): void {
  if (event.key !== 'Tab') return
  const stops = [...dialog.querySelectorAll<HTMLElement>(focusable)].filter(stop => stop.checkVisibility())
  const [first] = stops
  const last = stops.at(-1)
  const [end, start] = event.shiftKey ? [first, last] : [last, first]
  if (!start || (document.activeElement !== end && dialog.contains(document.activeElement))) return
  event.preventDefault()
  start.focus()
}

/** A dialog that keeps the focus until it is closed, and gives it back then. */
export function Modal({ title, onCancel, class: kind = '', describedBy, role, closable = true, icon, children }: Props) {
  const dialog = useRef<HTMLDialogElement>(null)
  const titleId = useId()
  useLayoutEffect(() => {
    const element = dialog.current
    if (!element) return undefined
    const before = document.activeElement
    if (!element.open) element.showModal()
    const leave = enterTopLayer(element)
    // The browser would begin with the button that closes the dialog.
    if (!element.querySelector('[autofocus]')) {
      element.querySelector<HTMLElement>('.modal-body :is(input, textarea, button, [tabindex="0"]):enabled')?.focus()
    }
    return () => {
      leave()
      element.close()
      if (before instanceof HTMLElement && before.isConnected) before.focus({ preventScroll: true })
    }
  }, [])
  return (
    <dialog
      ref={dialog}
      class={`modal ${kind}`}
      role={role}
      aria-labelledby={titleId}
      aria-describedby={describedBy}
      onKeyDown={event => keepInside(event, event.currentTarget)}
      onCancel={event => {
        // The owner decides; closing here would let the screen and the server disagree.
        event.preventDefault()
        if (event.target === dialog.current && !popupOpen()) onCancel()
      }}
    >
      <div class="modal-panel">
        <div class="modal-head">
          {icon}
          <h2 id={titleId}>{title}</h2>
          {closable && (
            <button type="button" class="icon-button" aria-label={messages.value.close} onClick={onCancel}>
              <Icon name="close" />
            </button>
          )}
        </div>
        {children}
      </div>
    </dialog>
  )
}
