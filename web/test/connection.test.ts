import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest'
import { Connection } from '../src/wire/connection'
import type { HostState } from '../src/wire/protocol'

class FakeSocket {
  static readonly OPEN = 1
  readyState = 0
  sent: string[] = []
  onopen: (() => void) | null = null
  onmessage: ((event: { data: unknown }) => void) | null = null
  onclose: ((event: { code: number }) => void) | null = null
  send(text: string): void {
    this.sent.push(text)
  }
  close(): void {
    this.drop(1000)
  }
  open(): void {
    this.readyState = 1
    this.onopen?.()
  }
  drop(code: number): void {
    this.readyState = 3
    this.onclose?.({ code })
  }
}

const state: HostState = { setup: false, account: 'admin', language: 'english', product: 'P', version: '1' }

function start(answer: () => Promise<HostState> = () => Promise.resolve(state)) {
  const sockets: FakeSocket[] = []
  const asked = vi.fn(answer)
  const connection = new Connection({
    openSocket: () => {
      const socket = new FakeSocket()
      sockets.push(socket)
      return socket as unknown as WebSocket
    },
    askState: asked,
    later: (run, ms) => {
      const timer = setTimeout(run, ms)
      return () => clearTimeout(timer)
    },
  })
  connection.start()
  sockets[0]!.open()
  return { connection, sockets, asked }
}

beforeEach(() => {
  vi.useFakeTimers()
  vi.stubGlobal('WebSocket', FakeSocket)
})
afterEach(() => {
  vi.useRealTimers()
  vi.unstubAllGlobals()
})

describe('the connection', () => {
  it('numbers events anew on every socket', async () => {
    const { connection, sockets } = start()
    expect(connection.sendSequenced({ type: 'open', page: 'a' })).toBe(1)
    expect(connection.sendSequenced({ type: 'open', page: 'b' })).toBe(2)
    sockets[0]!.drop(1006)
    expect(connection.sendSequenced({ type: 'open', page: 'c' })).toBe(0)
    await vi.advanceTimersByTimeAsync(1000)
    sockets[1]!.open()
    expect(connection.sendSequenced({ type: 'open', page: 'd' })).toBe(1)
    expect(JSON.parse(sockets[1]!.sent[0]!)).toEqual({ type: 'open', page: 'd', seq: 1 })
  })

  it('tries ever more rarely while the host is away, and at once when asked', async () => {
    const { connection, sockets, asked } = start(() => Promise.reject(new Error('away')))
    sockets[0]!.drop(1006)
    await vi.advanceTimersByTimeAsync(5000)
    const early = asked.mock.calls.length
    await vi.advanceTimersByTimeAsync(60_000)
    const later = asked.mock.calls.length - early
    expect(early).toBeGreaterThanOrEqual(3)
    expect(later).toBeGreaterThanOrEqual(3)
    expect(later).toBeLessThanOrEqual(7)
    asked.mockResolvedValue(state)
    connection.hurry()
    await vi.advanceTimersByTimeAsync(0)
    sockets[1]!.open()
    expect(connection.status.value).toBe('open')
  })

  it('stops when the session has ended while it was away', async () => {
    const { connection, sockets } = start(() => Promise.resolve({ ...state, account: null }))
    sockets[0]!.drop(1006)
    await vi.advanceTimersByTimeAsync(60_000)
    expect([connection.status.value, sockets.length]).toEqual(['ended', 1])
  })

  it.each([
    [4001, 'replaced'],
    [4002, 'ended'],
  ])('does not come back after close code %d', async (code, status) => {
    const { connection, sockets } = start()
    sockets[0]!.drop(code)
    await vi.advanceTimersByTimeAsync(60_000)
    expect([connection.status.value, sockets.length]).toEqual([status, 1])
  })
})
