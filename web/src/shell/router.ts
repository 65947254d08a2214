import { effect, untracked } from '@preact/signals'
import { connection, session } from '../state/app-state'

const named = (): string => decodeURIComponent(location.hash.replace(/^#\/?/, ''))

export const addressOf = (page: string): string => `#/${encodeURIComponent(page)}`

export function goTo(page: string): void {
  if (named() === page) follow()
  else location.hash = addressOf(page)
}

/** The address has changed: the page that it names is opened, unless something must be answered first. */
function follow(): void {
  const hello = session.hello.peek()
  if (!hello) return
  const shown = session.opening.peek() ?? session.page.peek()?.name
  const wanted = named()
  if (wanted === shown) return
  if (session.blocked.peek() || !hello.pages.some(page => page.name === wanted)) return restore()
  session.open(wanted)
  if (session.opening.peek() !== wanted) restore()
}

/** The address names the page on view again. */
function restore(): void {
  const page = session.page.peek()?.name
  if (page !== undefined && named() !== page) history.replaceState(null, '', addressOf(page))
}

export function startRouter(): void {
  addEventListener('hashchange', follow)
  effect(() => {
    const page = session.page.value
    const opening = session.opening.value
    if (page && opening === null && !page.closed.value) untracked(restore)
  })
  // The first greeting decides: an address that names a page wins over the page that the session left open.
  effect(() => {
    const hello = session.hello.value
    if (!hello || connection.status.value !== 'open') return
    untracked(() => {
      if (session.opening.peek() !== null) return
      const wanted = named()
      const known = hello.pages.some(page => page.name === wanted)
      const target = known ? wanted : (hello.open ?? hello.pages[0]?.name)
      if (target === undefined || target === hello.open || session.page.peek()?.name === target) return
      session.open(target)
    })
  })
}
