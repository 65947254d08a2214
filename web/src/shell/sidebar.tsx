import { useEffect, useRef } from 'preact/hooks'
import { messages } from '../i18n'
import { Icon, Logo } from '../parts/icon'
import { session } from '../state/app-state'
import type { PageEntry } from '../wire/protocol'
import { openPasswordDialog } from './password-dialog'
import { addressOf, goTo } from './router'

function grouped(pages: readonly PageEntry[]): { group: string; pages: PageEntry[] }[] {
  const groups: { group: string; pages: PageEntry[] }[] = []
  for (const page of pages) {
    const group = groups.find(known => known.group === page.group)
    if (group) group.pages.push(page)
    else groups.push({ group: page.group, pages: [page] })
  }
  return groups
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
        {grouped(hello?.pages ?? []).map((group, place) => (
          <section key={group.group}>
            <h2 id={`nav-${place}`}>{group.group}</h2>
            <ul aria-labelledby={`nav-${place}`}>
              {group.pages.map(page => (
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
            </ul>
          </section>
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
          <p>{m.version(hello.version)}</p>
        </div>
      )}
    </nav>
  )
}
