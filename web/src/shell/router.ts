import { effect, untracked } from '@preact/signals'
import { addressOf, parseAddress, type Address } from '../model/address'
import { connection, session } from '../state/app-state'

const named = (): Address => parseAddress(location.hash)
const same = (one: Address, other: Address | undefined): boolean => one.page === other?.page && one.query === other.query

/** The address as it was when it was last read or written here. Any other one is news that `hashchange` has yet to bring. */
let known = location.hash

function write(change: 'pushState' | 'replaceState', address: string): void {
  history[change](null, '', address)
  known = location.hash
}

export function goTo(page: string, query = ''): void {
  if (same(named(), { page, query })) follow()
  else location.hash = addressOf(page, query)
}

/** What is shown, or was asked for. */
function shownAddress(): Address | undefined {
  const opening = session.opening.peek()
  if (opening !== null) return { page: opening, query: session.openingQuery }
  const page = session.page.peek()
  return page ? { page: page.name, query: page.query.peek() } : undefined
}

/** The address has changed: the page that it names is opened, unless something must be answered first. */
function follow(): void {
  known = location.hash
  const hello = session.hello.peek()
  if (!hello) return
  const wanted = named()
  if (same(wanted, shownAddress())) return
  if (session.blocked.peek() || !hello.pages.some(page => page.name === wanted.page)) return restore()
  session.open(wanted.page, wanted.query)
  if (!same(wanted, shownAddress())) restore()
}

/** The address names the page on view again. */
function restore(): void {
  const page = session.page.peek()
  if (!page) return
  const shown = { page: page.name, query: page.query.peek() }
  if (!same(named(), shown)) write('replaceState', addressOf(shown.page, shown.query))
}

/** The page shows something else than before: the address names it, and going back leads to what was there. */
function keepUp(): void {
  const page = session.page.peek()
  if (!page) return
  const { page: name, query } = named()
  if (name === page.name && query !== page.query.peek()) write('pushState', addressOf(page.name, page.query.peek()))
  else restore()
}

export function startRouter(): void {
  addEventListener('hashchange', follow)
  session.onGo = goTo
  let last: unknown = null
  effect(() => {
    const page = session.page.value
    const opening = session.opening.value
    void page?.query.value
    const told = location.hash === known
    if (page && opening === null && !page.closed.value && told) untracked(page === last ? keepUp : restore)
    if (opening === null) last = page
  })
  // The first greeting decides: an address that names a page wins over the page that the session left open.
  effect(() => {
    const hello = session.hello.value
    if (!hello || connection.status.value !== 'open') return
    untracked(() => {
      if (session.opening.peek() !== null) return
      const wanted = named()
      const known = hello.pages.some(page => page.name === wanted.page)
      const target = known ? wanted : { page: hello.open ?? hello.pages[0]?.name ?? '', query: known ? wanted.query : (hello.query ?? '') }
      const open = hello.open === null ? undefined : { page: hello.open, query: hello.query ?? '' }
      if (target.page === '' || same(target, open) || same(target, shownAddress())) return
      session.open(target.page, target.query)
    })
  })
}
