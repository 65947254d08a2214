import type { ComponentChildren } from 'preact'
import { useEffect, useRef, useState } from 'preact/hooks'
import { messages } from '../i18n'
import { Icon, Logo, type IconName } from '../parts/icon'
import { ThemeButton } from '../parts/theme-button'
import { begin, connection, enter, hostState, screen } from '../state/app-state'
import { logIn, setUp } from '../wire/api'
import { FailureNote, focusInvalid, Input, Submit, useNewPassword, useSending } from './fields'

function Card({ title, lead, children }: { title: string; lead: string; children: ComponentChildren }) {
  const product = hostState.value?.product ?? ''
  useEffect(() => {
    document.title = product === '' ? title : `${title} – ${product}`
  }, [title, product])
  return (
    <div class="door">
      <header class="door-tools">
        <ThemeButton />
      </header>
      <main class="door-card">
        <div class="door-brand">
          <Logo />
          <span class="brand-name">{product}</span>
        </div>
        <h1>{title}</h1>
        <p class="door-lead">{lead}</p>
        {children}
      </main>
      <footer class="door-foot">{hostState.value && messages.value.version(hostState.value.version)}</footer>
    </div>
  )
}

function LogIn() {
  const m = messages.value
  const [account, setAccount] = useState('')
  const [password, setPassword] = useState('')
  const [tried, setTried] = useState(false)
  const { sending, failure, wait, send } = useSending(enter)
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
  const [tried, setTried] = useState(false)
  const chosen = useNewPassword(tried)
  const { sending, failure, wait, send } = useSending(enter, failed => {
    if (failed.error === 'already_set_up') void begin()
  })
  const missing = (value: string): string | undefined => (tried && value.trim() === '' ? m.required : undefined)
  const submit = (event: Event): void => {
    event.preventDefault()
    setTried(true)
    if (secret.trim() === '' || account.trim() === '' || !chosen.acceptable) return focusInvalid(event.currentTarget)
    if (!sending) void send(() => setUp(secret.trim(), account.trim(), chosen.password))
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
        {chosen.inputs}
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
    case 'full':
      return <Notice icon="expand" title={m.tooManyTabs} text={m.tooManyTabsText} action={m.tryNow} onAction={() => void begin()} />
    case 'replaced':
      return <Notice icon="expand" title={m.replaced} text={m.replacedText} action={m.useHere} onAction={() => void begin()} />
    default:
      return <p class="page-empty">{m.loading}</p>
  }
}
