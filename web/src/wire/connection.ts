import { signal } from '@preact/signals'
import { closeCodes, type HostState, type PlainMessage, type SequencedMessage, type ServerMessage } from './protocol'

export type Status = 'idle' | 'connecting' | 'open' | 'lost' | 'ended' | 'replaced' | 'full'

interface ConnectionPorts {
  openSocket(): WebSocket
  /** Whether the cookie still belongs to a session; rejects when the host can't be reached. */
  askState(): Promise<HostState>
  later(run: () => void, ms: number): () => void
}

const firstDelay = 500
const longestDelay = 15_000
/** A line that drops sooner than this is no success. */
const steadyAfter = 5000

/** The WebSocket with its numbering, opened again by itself when it drops. */
export class Connection {
  readonly status = signal<Status>('idle')
  onMessage: (message: ServerMessage) => void = () => {}
  /** Runs when a socket has been opened: the numbering begins again. */
  onOpened: () => void = () => {}

  private socket: WebSocket | null = null
  private seq = 0
  private attempt = 0
  private openedAt = 0
  private cancelRetry: (() => void) | null = null
  private readonly ports: ConnectionPorts

  constructor(ports: ConnectionPorts) {
    this.ports = ports
  }

  start(): void {
    this.attempt = 0
    this.stopRetry()
    this.open('connecting')
  }

  stop(): void {
    this.stopRetry()
    const socket = this.socket
    this.socket = null
    socket?.close()
    this.status.value = 'idle'
  }

  /** Tries at once when it waits for the next try: the network or the tab has just come back. */
  hurry(): void {
    if (this.status.value !== 'lost' || !this.cancelRetry) return
    this.attempt = 0
    this.stopRetry()
    void this.retry()
  }

  /** Sends an event and returns its number, or 0 when there is no connection. */
  sendSequenced(message: SequencedMessage): number {
    if (this.socket?.readyState !== WebSocket.OPEN) return 0
    this.socket.send(JSON.stringify({ ...message, seq: ++this.seq }))
    return this.seq
  }

  send(message: PlainMessage): boolean {
    if (this.socket?.readyState !== WebSocket.OPEN) return false
    this.socket.send(JSON.stringify(message))
    return true
  }

  private open(status: Status): void {
    this.status.value = status
    const socket = this.ports.openSocket()
    this.socket = socket
    socket.onopen = () => {
      if (this.socket !== socket) return
      this.seq = 0
      this.openedAt = Date.now()
      this.onOpened()
      this.status.value = 'open'
    }
    socket.onmessage = event => {
      if (this.socket !== socket || typeof event.data !== 'string') return
      this.onMessage(JSON.parse(event.data) as ServerMessage)
    }
    socket.onclose = event => {
      if (this.socket !== socket) return
      this.socket = null
      if (this.openedAt > 0 && Date.now() - this.openedAt > steadyAfter) this.attempt = 0
      this.openedAt = 0
      if (event.code === closeCodes.replaced) this.status.value = 'replaced'
      else if (event.code === closeCodes.ended) this.status.value = 'ended'
      else if (event.code === closeCodes.tooManyTabs) this.status.value = 'full'
      else this.scheduleRetry()
    }
  }

  private scheduleRetry(): void {
    this.status.value = 'lost'
    const delay = Math.min(longestDelay, firstDelay * 2 ** this.attempt++)
    this.cancelRetry = this.ports.later(() => void this.retry(), delay * (0.75 + Math.random() / 2))
  }

  private async retry(): Promise<void> {
    this.cancelRetry = null
    try {
      const state = await this.ports.askState()
      if (this.status.value !== 'lost') return
      if (state.account === null) this.status.value = 'ended'
      else this.open('lost')
    } catch {
      if (this.status.value === 'lost') this.scheduleRetry()
    }
  }

  private stopRetry(): void {
    this.cancelRetry?.()
    this.cancelRetry = null
  }
}
