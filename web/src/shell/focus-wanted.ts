import type { FormModel } from '../model/form'

const flashTime = 1800

/** Brings a control into view, gives it the focus and makes it stand out for a moment. A label leads to the control that it names. */
export function focusWanted(page: FormModel, name: string): void {
  const named = [...page.controls.values()].find(control => control.shown.peek().label === name)
  const target = named ?? page.controls.get(name)
  if (!target) return
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
