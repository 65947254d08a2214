import { useEffect, useRef, useState } from 'preact/hooks'
import { FormView } from '../controls/form-view'
import { messages } from '../i18n'
import type { FormModel } from '../model/form'
import { recall, remember } from '../model/preferences'
import { GroupHelp } from '../parts/group-help'
import { Icon } from '../parts/icon'
import { TextViewer } from '../parts/text-viewer'
import { connection, session } from '../state/app-state'
import { ActivityDrawer } from './activity-drawer'
import { Boxes } from './boxes'
import { BusyBar } from './busy-bar'
import { FormDialogs } from './form-dialogs'
import { Header } from './header'
import { Palette } from './palette'
import { PasswordDialog } from './password-dialog'
import { Sidebar } from './sidebar'
import { TerminalPanel } from './terminal-panel'

const flashTime = 1800

/** Brings a control into view, gives it the focus and makes it stand out for a moment. A label leads to the control that it names. */
function focusWanted(page: FormModel, name: string, entry: string | undefined): void {
  const named = [...page.controls.values()].find(control => control.shown.peek().label === name)
  const target = named ?? page.controls.get(name)
  if (!target) return
  if (entry !== undefined) target.chooseEntry(entry)
  // The page has just been drawn; its lists still find their height.
  requestAnimationFrame(() => {
    const element = document.querySelector<HTMLElement>(`[data-control="${CSS.escape(target.id)}"]`)
    if (!element) return
    const still = matchMedia('(prefers-reduced-motion: reduce)').matches
    element.scrollIntoView({ block: 'center', behavior: still ? 'auto' : 'smooth' })
    document.getElementById(target.id)?.focus({ preventScroll: true })
    element.classList.add('found')
    setTimeout(() => element.classList.remove('found'), flashTime)
  })
}

function Banner() {
  const m = messages.value
  const lost = connection.status.value === 'lost'
  return (
    <div class="banner" role="status" data-on={lost ? '' : undefined}>
      {lost && (
        <p class="banner-text">
          <Icon name="offline" />
          <span>{m.connectionLost}</span>
          <button type="button" class="button quiet small" onClick={() => connection.hurry()}>
            {m.reconnect}
          </button>
        </p>
      )}
    </div>
  )
}

function Page() {
  const page = session.page.value
  const main = useRef<HTMLElement>(null)
  const wanted = session.wanted.value
  const m = messages.value
  useEffect(() => {
    main.current?.scrollTo(0, Number(recall(`place ${page?.name}`, 'tab') ?? 0))
    // What had the focus may have gone with the page before.
    if (page && document.activeElement === document.body) main.current?.focus({ preventScroll: true })
  }, [page])
  useEffect(() => {
    if (!wanted || wanted.page !== page?.name || page.closed.peek()) return
    session.wanted.value = null
    focusWanted(page, wanted.control, wanted.entry)
  }, [page, wanted])
  return (
    <main
      ref={main}
      id="page"
      class="page"
      tabIndex={-1}
      onScrollEnd={event => {
        if (page && !page.closed.peek()) remember(`place ${page.name}`, String(Math.round(event.currentTarget.scrollTop)), 'tab')
      }}
      aria-busy={session.opening.value !== null} inert={page?.closed.value}>
      {page ? <FormView key={page.name} form={page} /> : <p class="page-empty">{m.loading}</p>}
    </main>
  )
}

export function Shell() {
  const m = messages.value
  const [menu, setMenu] = useState(false)
  const page = session.page.value
  const hello = session.hello.value
  const leaveMenu = (): void => {
    setMenu(false)
    // Until the menu is gone, the button behind it can't have the focus.
    requestAnimationFrame(() => document.querySelector<HTMLElement>('.menu-button')?.focus())
  }
  useEffect(() => {
    // Where the sidebar is always on view there is no menu to be open.
    const wide = matchMedia('(width >= 960px)')
    const close = (): void => setMenu(false)
    wide.addEventListener('change', close)
    return () => wide.removeEventListener('change', close)
  }, [])
  const title = hello?.pages.find(known => known.name === page?.name)?.title
  useEffect(() => {
    document.title = title ? `${title} – ${hello?.product}` : (hello?.product ?? '')
  }, [title, hello])
  useEffect(() => {
    document.documentElement.classList.toggle('is-busy', session.busy.value !== null)
    return () => document.documentElement.classList.remove('is-busy')
  }, [session.busy.value])
  return (
    <div class="shell">
      <a
        class="skip-link"
        href="#page"
        onClick={event => {
          event.preventDefault()
          document.getElementById('page')?.focus()
        }}
      >
        {m.skipToContent}
      </a>
      <Sidebar drawn={menu} onLeave={leaveMenu} />
      {menu && <div class="scrim" onClick={leaveMenu} />}
      <div class="body" inert={menu}>
        <Header menuOpen={menu} onMenu={() => setMenu(true)} />
        <BusyBar />
        <Banner />
        <div class="workspace">
          <Page />
          <ActivityDrawer />
        </div>
        <TerminalPanel />
      </div>
      <FormDialogs />
      <Palette />
      <PasswordDialog />
      <Boxes />
      <GroupHelp />
      <TextViewer />
    </div>
  )
}
