import { useSignalEffect } from '@preact/signals'
import { useEffect, useRef, useState } from 'preact/hooks'
import { messages } from '../i18n'
import { theme } from '../model/preferences'
import type { TerminalModel } from '../model/terminals'
import { visibleText } from '../model/visible-text'
import { Icon, Spinner } from '../parts/icon'
import { copyText } from '../parts/text-viewer'
import { session } from '../state/app-state'
import type { TerminalScreen } from '../terminal/screen'

const lowest = 140
const longestTitle = 200
const keyStep = 40
const height = { pixels: 0 }

const screens = new Map<number, TerminalScreen>()

const bounded = (pixels: number): number => Math.round(Math.max(lowest, Math.min(pixels, innerHeight * 0.8)))

function leave(): void {
  document.querySelector<HTMLElement>('.terminal-panel [role="tab"][aria-selected="true"]')?.focus()
}

/** The terminal itself comes with a file of its own, when the first program starts. */
function Screen({ terminal, inFront }: { terminal: TerminalModel; inFront: boolean }) {
  const host = useRef<HTMLDivElement>(null)
  const [state, setState] = useState<'loading' | 'ready' | 'failed'>('loading')
  const title = visibleText(terminal.title, longestTitle)

  useEffect(() => {
    let left = false
    let screen: TerminalScreen | null = null
    let observer: ResizeObserver | null = null
    const begin = async (): Promise<void> => {
      const { TerminalScreen } = await import('../terminal/screen')
      if (left || !host.current) return
      screen = new TerminalScreen(host.current, messages.peek().terminalInput(title), {
        typed: text => terminal.type(text),
        resized: (columns, rows) => terminal.resize(columns, rows),
        left: leave,
        copied: text => void copyText(text),
      })
      screens.set(terminal.id, screen)
      terminal.attach(screen)
      const shown = screen
      observer = new ResizeObserver(([entry]) => {
        // It has no size while another one is in front.
        if (entry && entry.contentRect.width > 0) shown.fit()
      })
      observer.observe(host.current)
      setState('ready')
    }
    begin().catch(() => setState('failed'))
    return () => {
      left = true
      observer?.disconnect()
      terminal.detach()
      screens.delete(terminal.id)
      screen?.dispose()
    }
  }, [terminal])

  useEffect(() => {
    const query = matchMedia('(prefers-color-scheme: dark)')
    const follow = (): void => screens.get(terminal.id)?.followTheme()
    query.addEventListener('change', follow)
    return () => query.removeEventListener('change', follow)
  }, [])
  useEffect(() => screens.get(terminal.id)?.followTheme(), [theme.value, state])
  const ended = terminal.end.value !== null
  useEffect(() => {
    const screen = screens.get(terminal.id)
    if (ended) screen?.finish()
    else screen?.restart()
  }, [ended, state])
  const wanted = session.terminals.wanted.value === terminal.id
  useEffect(() => {
    if (!wanted || state !== 'ready') return
    session.terminals.wanted.value = 0
    if (!session.blocked.peek()) screens.get(terminal.id)?.focus()
  }, [wanted, state])

  return (
    <div id={`terminal-${terminal.id}`} class="terminal-body" role="tabpanel" aria-label={title} hidden={!inFront}>
      {state === 'loading' && (
        <p class="terminal-note">
          <Spinner /> {messages.value.loading}
        </p>
      )}
      {state === 'failed' && <p class="terminal-note">{messages.value.terminalFailed}</p>}
      <div ref={host} class="terminal-screen" />
    </div>
  )
}

function stateOf(terminal: TerminalModel): string {
  const m = messages.value
  const end = terminal.end.value
  if (!end) return m.terminalRunning
  return 'signal' in end ? m.terminalKilled(end.signal) : m.terminalEnded(end.status)
}

function Tab({ terminal, selected }: { terminal: TerminalModel; selected: boolean }) {
  const { terminals } = session
  const title = visibleText(terminal.title, longestTitle)
  const move = (by: number): void => {
    const all = terminals.open.peek()
    const next = all[(all.indexOf(terminal) + by + all.length) % all.length]
    if (!next) return
    terminals.front.value = next.id
    requestAnimationFrame(leave)
  }
  return (
    <button
      type="button"
      class="terminal-tab"
      role="tab"
      aria-selected={selected}
      aria-controls={`terminal-${terminal.id}`}
      tabIndex={selected ? 0 : -1}
      title={title}
      onClick={() => {
        terminals.front.value = terminal.id
        requestAnimationFrame(() => screens.get(terminal.id)?.focus())
      }}
      onKeyDown={event => {
        if (event.key === 'ArrowRight') move(1)
        else if (event.key === 'ArrowLeft') move(-1)
        else if (event.key === 'F6') document.getElementById('page')?.focus()
        else return
        event.preventDefault()
      }}
    >
      <span class={`terminal-dot${terminal.end.value ? ' ended' : ''}`} />
      <bdi class="terminal-title">{title}</bdi>
    </button>
  )
}

/** Drawn along its upper edge, or moved with the arrow keys. */
function Handle({ panel }: { panel: { current: HTMLElement | null } }) {
  const m = messages.value
  const [part, setPart] = useState(40)
  const set = (pixels: number): void => {
    if (!panel.current) return
    height.pixels = bounded(pixels)
    panel.current.style.height = `${height.pixels}px`
    setPart(Math.round((height.pixels / innerHeight) * 100))
  }
  const now = (): number => panel.current?.getBoundingClientRect().height ?? 0
  return (
    <div
      class="terminal-handle"
      role="separator"
      aria-orientation="horizontal"
      aria-label={m.terminalHeight}
      aria-valuenow={part}
      tabIndex={0}
      onKeyDown={event => {
        if (event.key === 'ArrowUp') set(now() + keyStep)
        else if (event.key === 'ArrowDown') set(now() - keyStep)
        else return
        event.preventDefault()
      }}
      onPointerDown={event => {
        const handle = event.currentTarget
        const from = event.clientY + now()
        handle.setPointerCapture(event.pointerId)
        const move = (moved: PointerEvent): void => set(from - moved.clientY)
        const stop = (): void => {
          handle.removeEventListener('pointermove', move)
          handle.removeEventListener('lostpointercapture', stop)
        }
        handle.addEventListener('pointermove', move)
        handle.addEventListener('lostpointercapture', stop)
      }}
    />
  )
}

function CopyAll({ terminal }: { terminal: TerminalModel }) {
  const m = messages.value
  const [copied, setCopied] = useState(false)
  const copy = async (): Promise<void> => {
    const text = screens.get(terminal.id)?.text()
    if (text === undefined || !(await copyText(text))) return
    setCopied(true)
    setTimeout(() => setCopied(false), 1500)
  }
  return (
    <button type="button" class="icon-button" data-tip={copied ? m.copied : m.terminalCopy} aria-label={m.terminalCopy} onClick={() => void copy()}>
      <Icon name={copied ? 'check' : 'copy'} />
      <span class="visually-hidden" aria-live="polite">
        {copied && m.copied}
      </span>
    </button>
  )
}

function OpenPanel() {
  const m = messages.value
  const panel = useRef<HTMLElement>(null)
  const { terminals } = session
  const all = terminals.open.value
  const front = all.find(terminal => terminal.id === terminals.front.value) ?? all.at(-1)
  useEffect(() => {
    const element = panel.current
    if (!element) return undefined
    if (height.pixels > 0) element.style.height = `${bounded(height.pixels)}px`
    // The notices stand above the panel.
    const root = document.documentElement
    const observer = new ResizeObserver(() => root.style.setProperty('--below', `${element.offsetHeight}px`))
    observer.observe(element)
    return () => {
      observer.disconnect()
      root.style.removeProperty('--below')
    }
  }, [])
  // What had the focus has gone with the last terminal or with the panel.
  useSignalEffect(() => {
    if (terminals.open.value.length > 0) return
    requestAnimationFrame(() => {
      if (document.activeElement === document.body) document.getElementById('page')?.focus({ preventScroll: true })
    })
  })
  if (!front) return null
  return (
    <section ref={panel} class="terminal-panel" aria-label={m.terminals}>
      <Handle panel={panel} />
      <header class="terminal-head">
        <div class="terminal-tabs" role="tablist" aria-label={m.terminals}>
          {all.map(terminal => (
            <Tab key={terminal.id} terminal={terminal} selected={terminal === front} />
          ))}
        </div>
        <CopyAll key={front.id} terminal={front} />
        <button
          type="button"
          class="icon-button"
          data-tip={m.close}
          aria-label={m.terminalClose(visibleText(front.title, longestTitle))}
          onClick={() => {
            terminals.close(front)
            if (terminals.open.peek().length > 0) requestAnimationFrame(leave)
          }}
        >
          <Icon name="close" />
        </button>
      </header>
      {all.map(terminal => (
        <Screen key={terminal.id} terminal={terminal} inFront={terminal === front} />
      ))}
      <footer class="terminal-foot">
        <span role="status">{stateOf(front)}</span>
        <span class="terminal-hint">
          <kbd>F6</kbd> {m.terminalLeave}
        </span>
      </footer>
    </section>
  )
}

/** The programs that pages have started, below the page. */
export function TerminalPanel() {
  return session.terminals.open.value.length > 0 ? <OpenPanel /> : null
}
