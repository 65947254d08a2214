import type { ComponentChildren } from 'preact'
import { useEffect, useId, useRef, useState } from 'preact/hooks'
import { logIn, RequestFailed, setUp } from '../api'
import { begin, connection, enter, hostState, screen } from '../app-state'
import { fieldType } from '../controls/text-field'
import { messages } from '../i18n'
import type { Failure } from '../protocol'
import { ThemeButton } from '../shell/header'
import { Icon, Logo, Spinner, type IconName } from '../shell/icon'

const shortestPassword = 10

function Card({ title, lead, children }: { title: string; lead: string; children: ComponentChildren }) {
  const product = hostState.value?.product ?? ''
  useEffect(() => {
    document.title = product === '' ? title : `${title} – ${product}`
  }, [title, product])
  return (
    <div class="door">
      <div class="door-tools">
        <ThemeButton />
      </div>
      <main class="door-card">
        <div class="door-brand">
          <Logo />
          <span class="brand-name">{product}</span>
        </div>
        <h1>{title}</h1>
        <p class="door-lead">{lead}</p>
        {children}
      </main>
      <p class="door-foot">{hostState.value && messages.value.version(hostState.value.version)}</p>
    </div>
  )
}

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

function Input({ label, value, onValue, help, error, secret, autocomplete, focus }: InputProps) {
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

/** Sends a form of the door, and counts down when the host asks for patience. */
function useSending(): {
  sending: boolean
  failure: string
  wait: number
  fail: (text: string) => void
  send: (request: () => Promise<void>) => Promise<void>
} {
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
    setFailure(messages.value.failures[failed.error] ?? messages.value.failures.bad_request)
    if (failed.error === 'too_many_tries') setWait(Math.max(1, Math.ceil(failed.retryAfter ?? 10)))
    if (failed.error === 'already_set_up') void begin()
  }
  const send = async (request: () => Promise<void>): Promise<void> => {
    setSending(true)
    setFailure('')
    try {
      await request()
      enter()
    } catch (error) {
      setSending(false)
      if (error instanceof RequestFailed) told(error.failure)
      else setFailure(messages.value.unreachable)
    }
  }
  return { sending, failure, wait, fail: setFailure, send }
}

/** After a refused attempt the first field that needs something gets the focus. */
function focusInvalid(form: EventTarget | null): void {
  requestAnimationFrame(() => {
    if (form instanceof HTMLElement) form.querySelector<HTMLElement>('[aria-invalid="true"]')?.focus()
  })
}

function FailureNote({ failure, wait }: { failure: string; wait: number }) {
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

function Submit({ text, sending, wait }: { text: string; sending: boolean; wait: number }) {
  return (
    <button type="submit" class="button primary wide" disabled={wait > 0} aria-busy={sending}>
      {sending && <Spinner />}
      {sending ? messages.value.working : text}
    </button>
  )
}

function LogIn() {
  const m = messages.value
  const [account, setAccount] = useState('')
  const [password, setPassword] = useState('')
  const [tried, setTried] = useState(false)
  const { sending, failure, wait, send } = useSending()
  const submit = (event: Event): void => {
    event.preventDefault()
    setTried(true)
    if (account === '' || password === '') focusInvalid(event.currentTarget)
    else if (!sending) void send(() => logIn(account, password))
  }
  const missing = (value: string): string | undefined => (tried && value === '' ? m.required : undefined)
  return (
    <Card title={m.signIn} lead={m.signInLead}>
      <form onSubmit={submit} noValidate>
        <Input label={m.account} value={account} onValue={setAccount} error={missing(account)} autocomplete="username" focus />
        <Input
          label={m.password}
          value={password}
          onValue={setPassword}
          error={missing(password)}
          autocomplete="current-password"
          secret
        />
        <FailureNote failure={failure} wait={wait} />
        <Submit text={m.signIn} sending={sending} wait={wait} />
      </form>
    </Card>
  )
}

function SetUp() {
  const m = messages.value
  const [secret, setSecret] = useState('')
  const [account, setAccount] = useState('admin')
  const [password, setPassword] = useState('')
  const [again, setAgain] = useState('')
  const [tried, setTried] = useState(false)
  const { sending, failure, wait, send } = useSending()
  const missing = (value: string): string | undefined => (tried && value.trim() === '' ? m.required : undefined)
  const weak = [...password].length < shortestPassword
  const submit = (event: Event): void => {
    event.preventDefault()
    setTried(true)
    if (secret.trim() === '' || account.trim() === '' || weak || password !== again) return focusInvalid(event.currentTarget)
    if (!sending) void send(() => setUp(secret.trim(), account.trim(), password))
  }
  return (
    <Card title={m.setUp} lead={m.setUpLead}>
      <form onSubmit={submit} noValidate>
        <Input
          label={m.secret}
          value={secret}
          onValue={setSecret}
          help={m.secretHelp}
          error={missing(secret)}
          autocomplete="one-time-code"
          focus
        />
        <Input
          label={m.account}
          value={account}
          onValue={setAccount}
          help={m.accountHelp}
          error={missing(account)}
          autocomplete="username"
        />
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
          error={(tried || again.length >= password.length) && again !== '' && again !== password ? m.passwordsDiffer : missing(again)}
          autocomplete="new-password"
          secret
        />
        <FailureNote failure={failure} wait={wait} />
        <Submit text={m.finishSetUp} sending={sending} wait={wait} />
      </form>
    </Card>
  )
}

function Notice({ icon, title, text, action, onAction }: { icon: IconName; title: string; text: string; action: string; onAction: () => void }) {
  const button = useRef<HTMLButtonElement>(null)
  useEffect(() => button.current?.focus(), [])
  return (
    <div class="door">
      <main class="door-card notice">
        <span class="notice-icon">
          <Icon name={icon} />
        </span>
        <h1>{title}</h1>
        <p class="door-lead">{text}</p>
        <button ref={button} type="button" class="button primary wide" onClick={onAction}>
          {action}
        </button>
      </main>
    </div>
  )
}

const retryPause = 3000

function Unreachable() {
  const m = messages.value
  useEffect(() => {
    const timer = setInterval(() => void begin(), retryPause)
    return () => clearInterval(timer)
  }, [])
  return (
    <Notice icon="offline" title={m.unreachable} text={m.unreachableText} action={m.tryNow} onAction={() => void begin()} />
  )
}

/** Everything that is on view while the console itself is not. */
export function Door() {
  const m = messages.value
  switch (screen.value) {
    case 'setup':
      return <SetUp />
    case 'login':
      return <LogIn />
    case 'unreachable':
      return <Unreachable />
    case 'ended':
      return (
        <Notice
          icon="leave"
          title={m.sessionEnded}
          text={m.sessionEndedText}
          action={m.signInAgain}
          onAction={() => {
            connection.stop()
            void begin()
          }}
        />
      )
    case 'replaced':
      return <Notice icon="expand" title={m.replaced} text={m.replacedText} action={m.useHere} onAction={() => void begin()} />
    default:
      return <p class="page-empty">{m.loading}</p>
  }
}
