import { signal } from '@preact/signals'
import { useState } from 'preact/hooks'
import { messages } from '../i18n'
import { Modal } from '../parts/modal'
import { FailureNote, focusInvalid, Input, Submit, useNewPassword, useSending } from '../sign-in/fields'
import { session, toasts } from '../state/app-state'
import { changePassword } from '../wire/api'

const open = signal(false)

export function openPasswordDialog(): void {
  open.value = true
}

function Dialog({ onClose }: { onClose: () => void }) {
  const m = messages.value
  const [old, setOld] = useState('')
  const [tried, setTried] = useState(false)
  const chosen = useNewPassword(tried)
  const changed = (): void => {
    toasts.add(messages.value.passwordChanged)
    onClose()
  }
  const { sending, failure, wait, send } = useSending(changed, failed =>
    failed.error === 'wrong_password' ? messages.value.wrongOldPassword : undefined,
  )
  const missing = (value: string): string | undefined => (tried && value === '' ? m.required : undefined)
  const submit = (event: Event): void => {
    event.preventDefault()
    setTried(true)
    if (old === '' || !chosen.acceptable) return focusInvalid(event.currentTarget)
    if (!sending) void send(() => changePassword(old, chosen.password))
  }
  return (
    <Modal title={m.changePassword} onCancel={onClose} class="credentials">
      <form class="modal-body" onSubmit={submit} noValidate>
        {/* Lets the browser's own password store know whose password this is. */}
        <input type="text" autocomplete="username" value={session.hello.value?.account ?? ''} readOnly hidden />
        <Input label={m.oldPassword} value={old} onValue={setOld} error={missing(old)} autocomplete="current-password" secret />
        {chosen.inputs}
        <FailureNote failure={failure} wait={wait} />
        <Submit text={m.changePassword} sending={sending} wait={wait} />
      </form>
    </Modal>
  )
}

/** Lets the administrator choose another password. */
export function PasswordDialog() {
  if (!open.value) return null
  return (
    <Dialog
      onClose={() => {
        open.value = false
      }}
    />
  )
}
