/** Lists that hang from a control and tool tips; Escape closes the newest of them before anything else. */
const closers: (() => void)[] = []

export function pushPopup(close: () => void): () => void {
  closers.push(close)
  return () => {
    const place = closers.lastIndexOf(close)
    if (place >= 0) closers.splice(place, 1)
  }
}

export const popupOpen = (): boolean => closers.length > 0

export function listenForEscape(): void {
  document.addEventListener(
    'keydown',
    event => {
      const close = closers.at(-1)
      if (event.key !== 'Escape' || !close) return
      event.preventDefault()
      event.stopPropagation()
      close()
    },
    true,
  )
}
