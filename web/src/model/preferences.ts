import { effect, signal } from '@preact/signals'

export type Theme = 'auto' | 'light' | 'dark'

const key = 'theme'

function remembered(): Theme {
  try {
    const value = localStorage.getItem(key)
    return value === 'light' || value === 'dark' ? value : 'auto'
  } catch {
    return 'auto'
  }
}

export const theme = signal<Theme>(remembered())

export function followTheme(): void {
  effect(() => {
    document.documentElement.dataset.theme = theme.value
    try {
      localStorage.setItem(key, theme.value)
    } catch {
      // Without storage the choice lasts as long as the page.
    }
  })
}

/** Whether a finger rather than a mouse is used: rows and targets are larger then. */
export const coarse = signal(false)

export function followPointer(): void {
  const query = matchMedia('(pointer: coarse)')
  const update = (): void => {
    coarse.value = query.matches
  }
  query.addEventListener('change', update)
  update()
}
