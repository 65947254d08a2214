import { messages } from '../i18n'
import { Icon } from '../parts/icon'
import { ThemeButton } from '../parts/theme-button'
import { activity, leave, session } from '../state/app-state'
import { openPalette } from './palette'

export function Header({ onMenu, menuOpen }: { onMenu: () => void; menuOpen: boolean }) {
  const m = messages.value
  const page = session.page.value
  const hello = session.hello.value
  const entry = hello?.pages.find(known => known.name === page?.name)
  const failures = activity.unseenFailures.value
  return (
    <header class="top">
      <button
        type="button"
        class="icon-button menu-button"
        aria-label={m.menu}
        aria-expanded={menuOpen}
        aria-controls="sidebar"
        onClick={onMenu}
      >
        <Icon name="menu" />
      </button>
      <div class="top-title">
        {entry && <p>{entry.group}</p>}
        <h1>{entry?.title ?? page?.caption.value ?? ''}</h1>
      </div>
      <button type="button" class="search-button" aria-keyshortcuts="Control+K" onClick={openPalette}>
        <Icon name="search" />
        <span class="search-text">{m.search}</span>
        <span class="search-keys" aria-hidden="true">
          <kbd>Ctrl</kbd>
          <kbd>K</kbd>
        </span>
      </button>
      <button
        type="button"
        class="icon-button activity-button"
        aria-label={m.activityButton(failures)}
        aria-expanded={activity.open.value}
        data-tip={m.activity}
        onClick={() => activity.toggle(!activity.open.peek())}
      >
        <Icon name="activity" />
        {failures > 0 && <span class="badge">{failures > 99 ? '99+' : failures}</span>}
      </button>
      <ThemeButton />
      <button
        type="button"
        class="icon-button"
        aria-label={`${m.signOut} (${m.signedInAs(hello?.account ?? '')})`}
        data-tip={`${m.signOut} – ${m.signedInAs(hello?.account ?? '')}`}
        onClick={leave}
      >
        <Icon name="leave" />
      </button>
    </header>
  )
}
