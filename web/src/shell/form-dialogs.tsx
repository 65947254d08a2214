import { useLayoutEffect, useRef } from 'preact/hooks'
import { FormView } from '../controls/form-view'
import { messages } from '../i18n'
import type { FormModel } from '../model/form'
import { Icon } from '../parts/icon'
import { Modal } from '../parts/modal'
import { session } from '../state/app-state'
import { BusyBar } from './busy-bar'

function ModalForm({ form }: { form: FormModel }) {
  return (
    <Modal title={form.caption.value} class="wide form-dialog" onCancel={() => session.close(form)}>
      <BusyBar />
      <div class="modal-body">
        <FormView form={form} />
      </div>
    </Modal>
  )
}

/** A dialog beside the page: both can be used. Its head moves it. */
function FloatingForm({ form }: { form: FormModel }) {
  const dialog = useRef<HTMLDialogElement>(null)
  const place = useRef({ x: 0, y: 0 })
  useLayoutEffect(() => {
    dialog.current?.show()
    return () => dialog.current?.close()
  }, [])
  const close = (): void => session.close(form)
  const startMove = (event: PointerEvent): void => {
    const head = event.currentTarget as HTMLElement
    if (event.button !== 0 || (event.target instanceof Element && event.target.closest('button'))) return
    const from = { x: event.clientX - place.current.x, y: event.clientY - place.current.y }
    head.setPointerCapture(event.pointerId)
    const bounds = dialog.current?.getBoundingClientRect()
    const start = { ...place.current }
    const move = (moved: PointerEvent): void => {
      if (!dialog.current || !bounds) return
      // The head always stays within reach.
      const shift = (wanted: number, before: number, low: number, high: number): number =>
        Math.max(low, Math.min(high, wanted - before)) + before
      place.current = {
        x: shift(moved.clientX - from.x, start.x, 80 - bounds.right, innerWidth - 80 - bounds.left),
        y: shift(moved.clientY - from.y, start.y, -bounds.top, innerHeight - 56 - bounds.top),
      }
      dialog.current.style.translate = `${place.current.x}px ${place.current.y}px`
    }
    const stop = (): void => {
      head.removeEventListener('pointermove', move)
      head.removeEventListener('pointerup', stop)
      head.removeEventListener('pointercancel', stop)
    }
    head.addEventListener('pointermove', move)
    head.addEventListener('pointerup', stop)
    head.addEventListener('pointercancel', stop)
  }
  const titleId = `d-${form.name}-title`
  return (
    <dialog
      ref={dialog}
      class="floating form-dialog"
      aria-labelledby={titleId}
      onKeyDown={event => {
        if (event.key === 'Escape' && !event.defaultPrevented) close()
      }}
    >
      <div class="modal-head movable" onPointerDown={startMove}>
        <h2 id={titleId}>{form.caption.value}</h2>
        <button type="button" class="icon-button" aria-label={messages.value.close} onClick={close}>
          <Icon name="close" />
        </button>
      </div>
      <div class="modal-body">
        <FormView form={form} />
      </div>
    </dialog>
  )
}

export function FormDialogs() {
  return (
    <>
      {session.dialogs.value.map(form =>
        form.modal ? <ModalForm key={form.name} form={form} /> : <FloatingForm key={form.name} form={form} />,
      )}
    </>
  )
}
