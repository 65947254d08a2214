import { effect, signal } from '@preact/signals'

/** The modal dialogs that are open, the topmost last. What lies outside of the topmost can't be used. */
const modals = signal<readonly HTMLElement[]>([])

export function enterTopLayer(dialog: HTMLElement): () => void {
  modals.value = [...modals.peek(), dialog]
  return () => {
    modals.value = modals.peek().filter(other => other !== dialog)
  }
}

export const topmost = (): HTMLElement | undefined => modals.value.at(-1)

/** An element outside of the rest of the page, which always is where it can be used: in the topmost dialog, if there is one. */
export function makeHost(): HTMLElement {
  const host = document.createElement('div')
  effect(() => (topmost() ?? document.body).append(host))
  return host
}
