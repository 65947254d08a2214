import type { ComponentChildren } from 'preact'
import { useEffect, useId, useRef, useState } from 'preact/hooks'
import { fieldType } from '../controls/text-field'
import { messages } from '../i18n'
import { Icon, Spinner } from '../parts/icon'
import { RequestFailed } from '../wire/api'
import type { Failure } from '../wire/protocol'

const shortestPassword = 12

interface InputProps {
  label: string
  value: string
  onValue: (value: string) => void
  help?: string
  error?: string
  secret?: boolean
  autocomplete: string
  focus?: boolean
}

export function Input({ label, value, onValue, help, error, secret, autocomplete, focus }: InputProps) {
  const id = useId()
  const [shown, setShown] = useState(false)
  const input = useRef<HTMLInputElement>(null)
  const m = messages.value
  useEffect(() => {
    if (focus) input.current?.focus()
  }, [])
  return (
    <div class="field">
      <div class="field-head">
        <label class="field-label" for={id}>
          {label}
        </label>
      </div>
      <span class="input-line">
        <input
          ref={input}
          id={id}
          class="input"
          type={fieldType(secret === true && !shown)}
          autocomplete={autocomplete}
          autocapitalize="off"
          spellcheck={false}
          value={value}
          aria-invalid={error !== undefined}
          aria-describedby={error !== undefined || help ? `${id}-note` : undefined}
          onInput={event => onValue(event.currentTarget.value)}
        />
        {secret && (
          <button type="button" class="button quiet small" aria-pressed={shown} onClick={() => setShown(!shown)}>
            {shown ? m.hidePassword : m.showPassword}
          </button>
        )}
      </span>
      {(error !== undefined || help) && (
        <p id={`${id}-note`} class={`field-note${error !== undefined ? ' failed' : ''}`}>
          {error ?? help}
        </p>
      )}
    </div>
  )
}

interface Sending {
  sending: boolean
  failure: string
  wait: number
  send: (request: () => Promise<void>) => Promise<void>
}

/** Sends a form, and counts down when the host asks for patience. `onFailed` may tell another text. */
export function useSending(onDone: () => void, onFailed?: (failed: Failure) => string | void): Sending {
  const [sending, setSending] = useState(false)
  const [failure, setFailure] = useState('')
  const [wait, setWait] = useState(0)
  useEffect(() => {
    if (wait <= 0) return undefined
    const timer = setTimeout(() => {
      setWait(wait - 1)
      if (wait === 1) setFailure('')
    }, 1000)
    return () => clearTimeout(timer)
  }, [wait])
  const told = (failed: Failure): void => {
    const { failures } = messages.value
    setFailure(onFailed?.(failed) ?? failures[failed.error] ?? failures.bad_request)
    if (failed.error === 'too_many_tries') setWait(Math.max(1, Math.ceil(failed.retryAfter ?? 10)))
  }
  const send = async (request: () => Promise<void>): Promise<void> => {
    setSending(true)
    setFailure('')
    try {
      await request()
      onDone()
    } catch (error) {
      setSending(false)
      if (error instanceof RequestFailed) told(error.failure)
      else setFailure(messages.value.unreachable)
    }
  }
  return { sending, failure, wait, send }
}

/** After a refused attempt the first field that needs something gets the focus. */
export function focusInvalid(form: EventTarget | null): void {
  requestAnimationFrame(() => {
    if (form instanceof HTMLElement) form.querySelector<HTMLElement>('[aria-invalid="true"]')?.focus()
  })
}

export function FailureNote({ failure, wait }: { failure: string; wait: number }) {
  return (
    <div role="alert" class="door-failure-space">
      {failure !== '' && (
        <p class="door-failure">
          <Icon name="warning" />
          <span>
            {failure} {wait > 0 && <span aria-hidden="true">{messages.value.retryIn(wait)}</span>}
          </span>
        </p>
      )}
    </div>
  )
}

export function Submit({ text, sending, wait }: { text: string; sending: boolean; wait: number }) {
  return (
    <button type="submit" class="button primary wide" disabled={wait > 0} aria-busy={sending}>
      {sending && <Spinner />}
      {sending ? messages.value.working : text}
    </button>
  )
}

/** The fields for choosing a password, and what they hold. `tried`: what is wrong is told. */
export function useNewPassword(tried: boolean): { password: string; acceptable: boolean; inputs: ComponentChildren } {
  const m = messages.value
  const [password, setPassword] = useState('')
  const [again, setAgain] = useState('')
  const weak = [...password].length < shortestPassword
  const missing = tried && again === '' ? m.required : undefined
  const inputs = (
    <>
      <Input
        label={m.newPassword}
        value={password}
        onValue={setPassword}
        help={m.passwordHelp}
        error={tried && weak ? m.failures.weak_password : undefined}
        autocomplete="new-password"
        secret
      />
      <Input
        label={m.repeatPassword}
        value={again}
        onValue={setAgain}
        error={(tried || again.length >= password.length) && again !== '' && again !== password ? m.passwordsDiffer : missing}
        autocomplete="new-password"
        secret
      />
    </>
  )
  return { password, acceptable: !weak && password === again, inputs }
}
