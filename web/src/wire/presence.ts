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
