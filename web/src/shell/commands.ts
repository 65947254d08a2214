import { messages } from '../i18n'
import { theme, type Theme } from '../model/preferences'
import type { Command } from '../model/search'
import { leave, session } from '../state/app-state'
import type { Language } from '../wire/protocol'
import { openPasswordDialog } from './password-dialog'

const themes: readonly Theme[] = ['auto', 'light', 'dark']
const languages: readonly Language[] = ['english', 'german']

interface Runnable extends Command {
  run: () => void
}

/** What the search offers besides places: what stands in the header and below the sidebar. */
export function commands(): Runnable[] {
  const m = messages.value
  const shown = theme.value
  const spoken = session.hello.value?.language
  return [
    ...themes
      .filter(choice => choice !== shown)
      .map(choice => ({
        name: `theme-${choice}`,
        text: `${m.theme}: ${m.themes[choice]}`,
        words: 'theme colours mode Farben Design Modus',
        run: () => {
          theme.value = choice
        },
      })),
    ...languages
      .filter(language => language !== spoken)
      .map(language => ({
        name: `language-${language}`,
        text: m.languages[language],
        words: 'language Sprache english german Englisch Deutsch',
        run: () => session.speak(language),
      })),
    { name: 'password', text: m.changePassword, words: 'account Konto Kennwort', run: openPasswordDialog },
    { name: 'leave', text: m.signOut, words: 'log out logout Logout ausloggen', run: leave },
  ]
}
