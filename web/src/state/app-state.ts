import { effect, signal, untracked } from '@preact/signals'
import { language, messages } from '../i18n'
import { ActivityModel } from '../model/activity'
import { deviceStorage, Drafts } from '../model/drafts'
import { addressOf } from '../model/files'
import { Session } from '../model/session'
import { forgetTab } from '../model/preferences'
import { noticesOf } from '../model/notices'
import type { Summary } from '../model/toast-text'
import { Toasts } from '../model/toasts'
import { visibleText } from '../model/visible-text'
import { askState, logOut } from '../wire/api'
import { Connection } from '../wire/connection'
import type { HostState, OfferedFile } from '../wire/protocol'
import { TabIdentity, tabStorage } from '../wire/tab'

export type Screen = 'loading' | 'unreachable' | 'setup' | 'login' | 'console' | 'ended' | 'replaced' | 'full'

export const screen = signal<Screen>('loading')
export const hostState = signal<HostState | null>(null)

const tab = new TabIdentity(tabStorage())

export const connection = new Connection({
  openSocket: () => new WebSocket(`${location.protocol === 'https:' ? 'wss:' : 'ws:'}//${location.host}${tab.path}`),
  askState,
  later: (run, ms) => {
    const timer = setTimeout(run, ms)
    return () => clearTimeout(timer)
  },
})
export const activity = new ActivityModel()
export const session = new Session(connection, activity, new Drafts(deviceStorage()))
export const toasts = new Toasts()

const longestDetail = 300
const longestSentence = 1000
const longestName = 100
/** Far more often than other tabs take this one for gone. */
const beatInterval = 20_000

/** Notices about the same thing take each other's place. */
function topicOf(summary: Summary): string | undefined {
  if (summary.lead?.kind === 'set') return `${summary.lead.what} ${summary.lead.name}`
  return summary.failed || summary.lead ? undefined : 'statements'
}

connection.onMessage = message => {
  if (message.type === 'hello') tab.greeted(message.tab)
  session.receive(message)
}
session.onRenewed = () => toasts.add(messages.value.renewedConsole, { failed: true })
connection.onOpened = () => session.opened()
activity.send = message => connection.send(message)
activity.onAction = (message, steps) => {
  const { said, summary } = noticesOf(message, steps)
  for (const { text, tone } of said) {
    toasts.add(visibleText(text, longestSentence), { failed: tone === 'bad', neutral: tone === 'neutral' })
  }
  if (!summary) return
  toasts.add(visibleText(messages.value.toast(summary), longestDetail), {
    detail: visibleText(summary.error, longestDetail),
    failed: summary.failed,
    topic: topicOf(summary),
  })
}
session.onRefusal = refusal =>
  toasts.add(messages.value.refusals[refusal.code], { detail: visibleText(refusal.text, longestDetail), failed: true })

session.onUnfit = control => document.getElementById(control.id)?.focus()

session.onFile = (file, awaited) => {
  const m = messages.value
  const name = visibleText(file.name, longestName)
  const topic = `file ${file.token}`
  if (!awaited) return toasts.add(m.fileOffered(name), { topic, file })
  download(file)
  toasts.add(m.fileSent(name, m.size(file.size)), { topic })
}

/** Fetches a file as a click on its link would. */
function download(file: OfferedFile): void {
  const link = document.createElement('a')
  link.href = addressOf(file)
  link.download = file.name
  link.click()
  session.files.fetched(file.token)
}

/** The file that was dropped on a list, until the dialog for the list's files takes it. */
export const droppedFile = signal<File | null>(null)

effect(() => {
  const status = connection.status.value
  if (status === 'ended' || status === 'replaced' || status === 'full') {
    untracked(() => {
      screen.value = status
      session.reset()
      toasts.clear()
    })
  }
})

effect(() => {
  const told = session.hello.value
  if (told) language.value = told.language
})

// The record tells more than the notices, which would lie over it on a narrow screen.
effect(() => {
  if (activity.open.value) untracked(() => toasts.clear())
})

// What was typed in the last moment before the tab is closed or loaded anew.
addEventListener('pagehide', () => {
  session.flush()
  session.drafts.release()
  tab.release()
})
addEventListener('pageshow', event => {
  if (event.persisted) tab.hold()
})
addEventListener('beforeunload', event => {
  if (screen.peek() === 'console' && session.unsaved) event.preventDefault()
})
setInterval(() => session.drafts.beat(), beatInterval)
addEventListener('online', () => connection.hurry())
document.addEventListener('visibilitychange', () => {
  if (!document.hidden) connection.hurry()
})

export function enter(): void {
  screen.value = 'console'
  connection.start()
}

/** Asks the host where things stand, and shows the page that fits. */
export async function begin(): Promise<void> {
  try {
    const state = await askState()
    hostState.value = state
    language.value = state.language
    if (state.setup) screen.value = 'setup'
    else if (state.account === null) screen.value = 'login'
    else enter()
  } catch {
    screen.value = 'unreachable'
  }
}

/** Signs out, after the question about what is unsaved. */
export function leave(): void {
  if (!session.askToLeave()) void signOut()
}
session.onLeave = () => void signOut()

async function signOut(): Promise<void> {
  try {
    await logOut()
  } catch {
    // The session may have ended meanwhile; the sign-in page is right in any case.
  }
  connection.stop()
  session.reset()
  toasts.clear()
  tab.forget()
  forgetTab()
  await begin()
}
