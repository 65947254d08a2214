import { messages } from '../i18n'
import { theme, type Theme } from '../model/preferences'
import { Icon } from './icon'

const nextTheme: Record<Theme, Theme> = { auto: 'light', light: 'dark', dark: 'auto' }

export function ThemeButton() {
  const m = messages.value
  const name = `${m.theme}: ${m.themes[theme.value]}`
  return (
    <button
      type="button"
      class="icon-button"
      aria-label={name}
      data-tip={name}
      onClick={() => {
        theme.value = nextTheme[theme.value]
      }}
    >
      <Icon name={theme.value} />
    </button>
  )
}
