import { signal } from '@preact/signals'
import { useState } from 'preact/hooks'
import { messages } from '../i18n'
import { visibleText } from '../model/visible-text'
import { Modal } from './modal'

const viewed = signal<{ title: string; text: string } | null>(null)
const longestViewed = 200_000

export function viewText(title: string, text: string): void {
  viewed.value = { title, text }
}

export async function copyText(text: string): Promise<boolean> {
  try {
    await navigator.clipboard.writeText(text)
    return true
  } catch {
    return false
  }
}

export function CopyButton({ text, small }: { text: string; small?: boolean }) {
  const [copied, setCopied] = useState(false)
  const copy = async (): Promise<void> => {
    if (!(await copyText(text))) return
    setCopied(true)
    setTimeout(() => setCopied(false), 1500)
  }
  return (
    <button type="button" class={`button${small ? ' quiet small' : ''}`} onClick={() => void copy()}>
      <span aria-live="polite">{copied ? messages.value.copied : messages.value.copy}</span>
    </button>
  )
}

/** Shows a text that is too long for its row. */
export function TextViewer() {
  const shown = viewed.value
  if (!shown) return null
  const close = (): void => {
    viewed.value = null
  }
  return (
    <Modal title={shown.title} onCancel={close} class="wide">
      <pre class="viewed-text" dir="auto" tabIndex={0}>
        {visibleText(shown.text, longestViewed)}
      </pre>
      <div class="modal-buttons">
        <CopyButton text={shown.text} />
        <button type="button" class="button primary" autoFocus onClick={close}>
          {messages.value.close}
        </button>
      </div>
    </Modal>
  )
}
