import { signal } from '@preact/signals'
import { useEffect, useLayoutEffect, useMemo, useRef, useState } from 'preact/hooks'
import { keyTarget } from '../controls/list-row'
import { messages } from '../i18n'
import { placeOf, questionHit, search, type Hit } from '../model/search'
import { visibleText } from '../model/visible-text'
import { Icon } from '../parts/icon'
import { enterTopLayer } from '../parts/top-layer'
import { session } from '../state/app-state'
import { commands } from './commands'
import { goTo } from './router'

const open = signal(false)
const icons = { page: 'page', control: 'control', entry: 'entry', command: 'command', question: 'search' } as const

export function openPalette(): void {
  // What must be answered first would be hidden by it.
  if (session.blocked.peek() || !session.hello.peek()) return
  session.askCaptions()
  open.value = true
}

export function listenForPaletteKey(): void {
  document.addEventListener('keydown', event => {
    if (event.target instanceof Element && event.target.closest('.terminal-screen')) return
    if (!(event.ctrlKey || event.metaKey) || event.altKey || event.shiftKey || event.key.toLowerCase() !== 'k') return
    event.preventDefault()
    if (open.peek()) open.value = false
    else openPalette()
  })
}

export function Palette() {
  return open.value ? <OpenPalette /> : null
}

function OpenPalette() {
  const dialog = useRef<HTMLDialogElement>(null)
  const results = useRef<HTMLDivElement>(null)
  const [query, setQuery] = useState('')
  const [active, setActive] = useState(0)
  const pages = session.hello.value?.pages ?? []
  const captions = session.captions.value
  const { entries: finder } = session
  const entries = finder.hits.value
  const known = commands()
  const m = messages.value
  const found = useMemo(() => search(query, pages, captions, { entries, commands: known }), [query, pages, captions, entries])
  const question = questionHit(query, pages, m.paletteLookUp)
  const hits = question ? [...found, question] : found

  useLayoutEffect(() => {
    const element = dialog.current
    const before = document.activeElement
    element?.showModal()
    const leave = element && enterTopLayer(element)
    return () => {
      leave?.()
      element?.close()
      if (before instanceof HTMLElement && before.isConnected) before.focus({ preventScroll: true })
    }
  }, [])
  useEffect(() => finder.look(query), [query])
  useEffect(() => () => finder.look(''), [])
  useEffect(() => {
    if (session.blocked.value) close()
  }, [session.blocked.value])
  useLayoutEffect(() => {
    results.current?.querySelector('[aria-selected="true"]')?.scrollIntoView({ block: 'nearest' })
  }, [active, found])

  const close = (): void => {
    open.value = false
  }
  const choose = (hit: Hit | undefined): void => {
    if (!hit) return
    close()
    if (hit.kind === 'command') return known.find(command => command.name === hit.control)?.run()
    if (hit.kind === 'question') return goTo(hit.page, hit.control)
    if (hit.kind !== 'page') session.find(hit.page, hit.control, hit.kind === 'entry' ? hit.text : undefined)
    goTo(hit.page)
  }
  const onKeyDown = (event: KeyboardEvent): void => {
    if (event.key === 'Enter') {
      event.preventDefault()
      choose(hits[active])
      return
    }
    if (event.key === 'Home' || event.key === 'End' || event.altKey || event.ctrlKey) return
    const target = keyTarget(event.key, active, hits.length, 8)
    if (target === undefined || hits.length === 0) return
    event.preventDefault()
    const step = event.key === 'ArrowDown' || event.key === 'ArrowUp'
    // Beyond either end the arrows go on at the other one.
    if (step && target === active) setActive(event.key === 'ArrowDown' ? 0 : hits.length - 1)
    else setActive(target)
  }

  return (
    <dialog
      ref={dialog}
      class="modal palette"
      aria-label={m.palette}
      onCancel={event => {
        event.preventDefault()
        close()
      }}
      onClick={event => {
        if (event.target === dialog.current) close()
      }}
    >
      <div class="modal-panel">
        <div class="palette-field">
          <Icon name="search" />
          <input
            type="text"
            role="combobox"
            aria-expanded={true}
            aria-controls="palette-results"
            aria-activedescendant={hits.length > 0 ? `palette-${active}` : undefined}
            aria-label={m.palette}
            placeholder={m.palettePlaceholder}
            autocomplete="off"
            spellcheck={false}
            autoFocus
            value={query}
            onInput={event => {
              setQuery(event.currentTarget.value)
              setActive(0)
            }}
            onKeyDown={onKeyDown}
          />
          <button type="button" class="icon-button small" aria-label={m.close} onClick={close}>
            <Icon name="close" />
          </button>
        </div>
        <div ref={results} id="palette-results" class="palette-results" role="listbox" aria-label={m.palette}>
          {found.length === 0 && <p class="palette-none">{finder.searching.value ? m.paletteSearching : m.paletteEmpty(query)}</p>}
          {hits.map((hit, place) => (
            <div
              key={`${hit.kind}/${hit.page}/${hit.control}/${hit.kind === 'entry' ? hit.text : ''}`}
              id={`palette-${place}`}
              role="option"
              class="palette-hit"
              aria-selected={place === active}
              onPointerMove={() => setActive(place)}
              onClick={() => choose(hit)}
            >
              <Icon name={icons[hit.kind]} />
              <span class="palette-text" dir="auto">
                {visibleText(hit.text, 200)}
              </span>
              <span class="palette-place">{placeOf(hit)}</span>
            </div>
          ))}
        </div>
        <footer class="palette-foot">
          <span>
            <kbd>↑</kbd>
            <kbd>↓</kbd> {m.paletteHint.move}
          </span>
          <span>
            <kbd>↵</kbd> {m.paletteHint.open}
          </span>
          <span>
            <kbd>Esc</kbd> {m.paletteHint.close}
          </span>
          <span class="palette-count" aria-live="polite">
            {query !== '' && (finder.searching.value ? m.paletteSearching : m.paletteHits(found.length))}
          </span>
        </footer>
      </div>
    </dialog>
  )
}
