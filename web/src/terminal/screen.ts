import { FitAddon } from '@xterm/addon-fit'
import { Terminal } from '@xterm/xterm'
import type { Screen } from '../model/terminals'
import { dark, light } from './colours'
import { makeSpansSafe, withSafeStyles } from './safe-styles'
import '@xterm/xterm/css/xterm.css'

makeSpansSafe()

interface Ports {
  typed(text: string): void
  resized(columns: number, rows: number): void
  /** The keyboard is to go somewhere else. */
  left(): void
  copied(text: string): void
}

/** Changing the title, links, the palette, and the clipboard; what a program says about them is dropped, questions included. */
const deafTo = [0, 1, 2, 4, 5, 7, 8, 9, 10, 11, 12, 13, 14, 17, 19, 21, 22, 50, 52, 104, 105, 110, 111, 112, 117, 119, 133, 777, 1337]

const hideCursor = '\u001b[?25l'

/** Draws a program's terminal. */
export class TerminalScreen implements Screen {
  private readonly terminal: Terminal
  private readonly fitting = new FitAddon()

  constructor(host: HTMLElement, label: string, ports: Ports) {
    this.terminal = new Terminal({
      fontFamily: "ui-monospace, 'SF Mono', 'Cascadia Mono', 'DejaVu Sans Mono', 'Liberation Mono', monospace",
      fontSize: matchMedia('(width < 720px)').matches ? 12 : 14,
      lineHeight: 1.15,
      scrollback: 5000,
      minimumContrastRatio: 4.5,
      cursorBlink: !matchMedia('(prefers-reduced-motion: reduce)').matches,
      macOptionClickForcesSelection: true,
      theme: this.isDark() ? dark : light,
    })
    this.terminal.loadAddon(this.fitting)
    for (const code of deafTo) this.terminal.parser.registerOscHandler(code, () => true)
    this.terminal.attachCustomKeyEventHandler(event => this.handles(event, ports))
    this.terminal.onData(ports.typed)
    this.terminal.onResize(({ cols, rows }) => ports.resized(cols, rows))
    withSafeStyles(() => this.terminal.open(host))
    this.terminal.textarea?.setAttribute('aria-label', label)
    this.fit()
    ports.resized(this.terminal.cols, this.terminal.rows)
  }

  write(bytes: Uint8Array, drawn: () => void): void {
    this.terminal.write(bytes, drawn)
  }

  reset(): void {
    this.terminal.reset()
  }

  /** As many columns and rows as there is room for. */
  fit(): void {
    this.fitting.fit()
  }

  focus(): void {
    this.terminal.focus()
  }

  /** The program has ended: nothing is typed any more. */
  finish(): void {
    this.terminal.options.disableStdin = true
    this.terminal.write(hideCursor)
  }

  restart(): void {
    this.terminal.options.disableStdin = false
  }

  followTheme(): void {
    this.terminal.options.theme = this.isDark() ? dark : light
  }

  /** What is selected, or else everything. */
  text(): string {
    if (this.terminal.hasSelection()) return this.terminal.getSelection()
    this.terminal.selectAll()
    const all = this.terminal.getSelection()
    this.terminal.clearSelection()
    return all.trimEnd() + '\n'
  }

  dispose(): void {
    this.terminal.dispose()
  }

  private isDark(): boolean {
    const { theme } = document.documentElement.dataset
    return theme === 'dark' || (theme !== 'light' && matchMedia('(prefers-color-scheme: dark)').matches)
  }

  private handles(event: KeyboardEvent, ports: Ports): boolean {
    if (event.key === 'F6') {
      if (event.type === 'keydown') ports.left()
    } else if (event.ctrlKey && event.key.toLowerCase() === 'c' && this.terminal.hasSelection()) {
      if (event.type === 'keydown') ports.copied(this.terminal.getSelection())
    } else return true
    event.preventDefault()
    event.stopPropagation()
    return false
  }
}
