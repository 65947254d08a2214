import { expect, test } from 'vitest'
import { watchPresence } from '../src/wire/presence'

test('what a person does is told once a minute, and again where it could not be sent', () => {
  const target = new EventTarget()
  let time = 0
  let connected = true
  let told = 0
  watchPresence(
    target,
    () => {
      if (connected) told++
      return connected
    },
    () => time,
  )
  const act = (at: number): void => {
    time = at
    target.dispatchEvent(new Event('wheel'))
  }
  expect(told).toBe(0)
  act(0)
  act(59_000)
  expect(told).toBe(1)
  connected = false
  act(60_000)
  connected = true
  act(61_000)
  expect(told).toBe(2)
})
