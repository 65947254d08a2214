import { useId } from 'preact/hooks'
import { messages } from '../i18n'
import { Icon, type IconName } from '../parts/icon'
import { Modal } from '../parts/modal'
import { session } from '../state/app-state'
import type { BoxMessage } from '../wire/protocol'

const icons: Record<number, IconName> = { 16: 'critical', 32: 'question', 48: 'warning', 64: 'info' }

const nameOf = (icon: IconName | undefined): string => {
  const m = messages.value
  if (icon === 'critical') return m.critical
  if (icon === 'question') return m.question
  if (icon === 'warning') return m.warning
  return m.information
}

function Box({ box }: { box: BoxMessage }) {
  const textId = useId()
  const m = messages.value
  // The style number also carries the buttons in its low bits; the icon is the part from 16 to 64.
  const icon = box.act ? 'warning' : icons[box.style & 0x70]
  // Enter alone destroys nothing.
  const safest = box.act ? 'cancel' : 'ok'
  const cancel = (): void => session.answer(box, box.buttons.includes('cancel') ? 'cancel' : 'ok')
  return (
    <Modal
      title={box.title || nameOf(icon)}
      role="alertdialog"
      class={`box ${icon ?? 'plain'}`}
      describedBy={textId}
      closable={false}
      onCancel={cancel}
      icon={icon && <Icon name={icon} />}
    >
      <p id={textId} class="box-text" dir="auto">
        {box.text}
      </p>
      <div class="modal-buttons">
        {[...box.buttons].reverse().map(reply => (
          <button
            key={reply}
            type="button"
            class={`button${reply !== 'ok' ? '' : box.act ? ' danger' : ' primary'}`}
            autoFocus={reply === safest}
            onClick={() => session.answer(box, reply)}
          >
            {reply === 'ok' ? box.act || m.ok : reply === 'other' ? box.other : m.cancel}
          </button>
        ))}
      </div>
    </Modal>
  )
}

export function Boxes() {
  return (
    <>
      {session.boxes.value.map(box => (
        <Box key={box.id} box={box} />
      ))}
    </>
  )
}
