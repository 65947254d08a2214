const interval = 60_000

/** Tells the host now and then that somebody is there, who may only be reading. */
export function watchPresence(target: EventTarget, tell: () => boolean, now: () => number = Date.now): void {
  let told = -Infinity
  const moved = (): void => {
    if (now() - told >= interval && tell()) told = now()
  }
  for (const event of ['pointerdown', 'pointermove', 'keydown', 'wheel']) {
    target.addEventListener(event, moved, { passive: true })
  }
}

const lookInterval = 10_000

/** Lets the host look for what others have changed: now and then, and when somebody comes back to the tab. A tab that nobody sees asks for nothing. */
export function watchChanges(page: Document, ask: () => void): void {
  const look = (): void => {
    if (!page.hidden) ask()
  }
  setInterval(look, lookInterval)
  page.addEventListener('visibilitychange', look)
}
