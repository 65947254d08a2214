import { useEffect, useRef, useState } from 'preact/hooks'
import { connection, session } from '../app-state'
import { FormView } from '../controls/form-view'
import { messages } from '../i18n'
import { ActivityDrawer } from './activity-drawer'
import { Boxes } from './boxes'
import { BusyBar } from './busy-bar'
import { focusWanted } from './focus-wanted'
import { FormDialogs } from './form-dialogs'
import { Header } from './header'
import { Icon } from './icon'
import { Palette } from './palette'
import { Sidebar } from './sidebar'
import { TextViewer } from './text-viewer'

function Banner() {
  const m = messages.value
  const lost = connection.status.value === 'lost'
  return (
    <div class="banner" role="status" data-on={lost ? '' : undefined}>
      {lost && (
        <>
          <Icon name="offline" />
          <span>{m.connectionLost}</span>
          <button type="button" class="button quiet small" onClick={() => connection.hurry()}>
            {m.reconnect}
          </button>
        </>
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
    main.current?.scrollTo(0, 0)
  }, [page])
  useEffect(() => {
    if (!wanted || wanted.page !== page?.name || page.closed.peek()) return
    session.wanted.value = null
    focusWanted(page, wanted.control)
  }, [page, wanted])
  return (
    <main ref={main} id="page" class="page" tabIndex={-1} aria-busy={session.opening.value !== null} inert={page?.closed.value}>
      {page ? <FormView key={page.name} form={page} /> : <p class="page-empty">{m.loading}</p>}
    </main>
  )
}

export function Shell() {
  const m = messages.value
  const [menu, setMenu] = useState(false)
  const page = session.page.value
  const hello = session.hello.value
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
      <Sidebar drawn={menu} onLeave={() => setMenu(false)} />
      {menu && <div class="scrim" onClick={() => setMenu(false)} />}
      <div class="body">
        <Header menuOpen={menu} onMenu={() => setMenu(true)} />
        <BusyBar />
        <Banner />
        <div class="workspace">
          <Page />
          <ActivityDrawer />
        </div>
      </div>
      <FormDialogs />
      <Palette />
      <Boxes />
      <TextViewer />
    </div>
  )
}
