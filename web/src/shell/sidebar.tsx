import type { ComponentChildren } from 'preact'
import { useEffect, useRef, useState } from 'preact/hooks'
import { messages } from '../i18n'
import { recall, remember } from '../model/preferences'
import { Icon, Logo } from '../parts/icon'
import { session } from '../state/app-state'
import type { PageEntry } from '../wire/protocol'
import { openPasswordDialog } from './password-dialog'
import { addressOf } from '../model/address'
import { goTo } from './router'

interface Section {
  name: string
  title: string
  pages: PageEntry[]
}

function sectionsOf(pages: readonly PageEntry[]): Section[] {
  const sections: Section[] = []
  for (const page of pages) {
    const section = sections.find(known => known.name === page.section)
    if (section) section.pages.push(page)
    else sections.push({ name: page.section, title: page.group, pages: [page] })
  }
  return sections
}

const foldKey = (section: string): string => `fold ${section}`
/** Below this height the groups do not fit: only the one that is used is unfolded until somebody unfolds more. */
const lowWindow = 980

interface GroupProps {
  section: Section
  id: string
  holdsCurrent: boolean
  children: ComponentChildren
}

function Group({ section, id, holdsCurrent, children }: GroupProps) {
  const [chosen, setChosen] = useState(() => recall(foldKey(section.name), 'device'))
  const open = chosen === null ? holdsCurrent || innerHeight >= lowWindow : chosen === 'open'
  const choose = (unfolded: boolean): void => {
    const state = unfolded ? 'open' : 'folded'
    remember(foldKey(section.name), state, 'device')
    setChosen(state)
  }
  // Whoever comes to a page by another way sees where it is.
  useEffect(() => {
    if (holdsCurrent && chosen === 'folded') choose(true)
  }, [holdsCurrent])
  return (
    <section>
      <h2>
        <button type="button" class="group-fold" aria-expanded={open} aria-controls={id} onClick={() => choose(!open)}>
          <span id={`${id}-name`}>{section.title}</span>
          <Icon name="chevron" />
        </button>
      </h2>
      <ul id={id} aria-labelledby={`${id}-name`} hidden={!open}>
        {children}
      </ul>
    </section>
  )
}

/** Takes the unsaved texts of this account off the device. */
function ForgetDrafts() {
  const m = messages.value
  const [count, setCount] = useState(0)
  // Texts come and go with every page and every act; asking for them costs little.
  useEffect(() => {
    const look = (): void => setCount(session.drafts.count)
    look()
    const timer = setInterval(look, 2000)
    return () => clearInterval(timer)
  }, [session.page.value])
  if (count === 0) return null
  return (
    <button
      type="button"
      class="link"
      onClick={() => {
        session.forgetDrafts()
        setCount(0)
      }}
    >
      {m.forgetDrafts(count)}
    </button>
  )
}

export function Sidebar({ drawn, onLeave }: { drawn: boolean; onLeave: () => void }) {
  const hello = session.hello.value
  const current = session.opening.value ?? session.page.value?.name
  const nav = useRef<HTMLElement>(null)
  const m = messages.value
  useEffect(() => {
    nav.current?.querySelector('[aria-current]')?.scrollIntoView({ block: 'nearest' })
  }, [current, drawn])
  useEffect(() => {
    if (drawn) nav.current?.querySelector<HTMLElement>('[aria-current], a')?.focus()
  }, [drawn])
  return (
    <nav
      ref={nav}
      id="sidebar"
      class="sidebar"
      data-drawn={drawn ? '' : undefined}
      aria-label={m.navigation}
      onKeyDown={event => {
        if (event.key === 'Escape' && drawn) onLeave()
      }}
    >
      <div class="brand">
        <Logo />
        <span class="brand-name">{hello?.product}</span>
        <button type="button" class="icon-button sidebar-close" aria-label={m.closeMenu} onClick={onLeave}>
          <Icon name="close" />
        </button>
      </div>
      <div class="sidebar-pages">
        {sectionsOf(hello?.pages ?? []).map((section, place) => (
          <Group
            key={section.name}
            section={section}
            id={`nav-${place}`}
            holdsCurrent={section.pages.some(page => page.name === current)}
          >
              {section.pages.map(page => (
                <li key={page.name}>
                  <a
                    href={addressOf(page.name)}
                    aria-current={page.name === current ? 'page' : undefined}
                    data-opening={page.name === session.opening.value ? '' : undefined}
                    onClick={event => {
                      if (event.ctrlKey || event.metaKey || event.shiftKey) return
                      event.preventDefault()
                      goTo(page.name)
                      if (drawn) onLeave()
                    }}
                  >
                    {page.title}
                  </a>
                </li>
              ))}
          </Group>
        ))}
      </div>
      {hello && (
        <div class="sidebar-foot">
          <p class="sidebar-account">{m.signedInAs(hello.account)}</p>
          <button
            type="button"
            class="link"
            onClick={() => {
              if (drawn) onLeave()
              openPasswordDialog()
            }}
          >
            {m.changePassword}
          </button>
          <ForgetDrafts />
          <p>{m.version(hello.version)}</p>
        </div>
      )}
    </nav>
  )
}
