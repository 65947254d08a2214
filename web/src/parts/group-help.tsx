import { signal } from '@preact/signals'
import { messages } from '../i18n'
import { Modal } from './modal'

interface Explained {
  name: string
  text: string
}

const explained = signal<{ title: string; entries: readonly Explained[] } | null>(null)

/** Shows what the controls of a group do, where no pointer can rest on them. */
export function explainGroup(title: string, entries: readonly Explained[]): void {
  explained.value = { title, entries }
}

export function GroupHelp() {
  const shown = explained.value
  if (!shown) return null
  const close = (): void => {
    explained.value = null
  }
  return (
    <Modal title={shown.title} onCancel={close}>
      <dl class="group-help" tabIndex={0}>
        {shown.entries.map(({ name, text }, place) => (
          <div key={place}>
            <dt>{name}</dt>
            <dd>{text}</dd>
          </div>
        ))}
      </dl>
      <div class="modal-buttons">
        <button type="button" class="button" autoFocus onClick={close}>
          {messages.value.close}
        </button>
      </div>
    </Modal>
  )
}
