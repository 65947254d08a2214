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

type Place = 'tab' | 'device'

/** What is remembered for this tab or on this device; null without it. */
export function recall(name: string, place: Place): string | null {
  try {
    return (place === 'tab' ? sessionStorage : localStorage).getItem(name)
  } catch {
    return null
  }
}

/** An empty text forgets it. What is remembered for a tab is gone with its session. */
export function remember(name: string, value: string, place: Place): void {
  try {
    const storage = place === 'tab' ? sessionStorage : localStorage
    if (value === '') storage.removeItem(name)
    else storage.setItem(name, value)
  } catch {
    // Without storage nothing is remembered.
  }
}

/** Another person may sign in in this tab. */
export function forgetTab(): void {
  try {
    sessionStorage.clear()
  } catch {
    // Nothing was remembered.
  }
}
