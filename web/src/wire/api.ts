import type { Failure, HostState } from './protocol'

export class RequestFailed extends Error {
  readonly failure: Failure
  constructor(failure: Failure) {
    super(failure.error)
    this.failure = failure
  }
}

export async function askState(): Promise<HostState> {
  const answer = await fetch('/api/state', { cache: 'no-store' })
  if (!answer.ok) throw new Error(`state: ${answer.status}`)
  return (await answer.json()) as HostState
}

async function post(path: string, body: object): Promise<void> {
  const answer = await fetch(path, {
    method: 'POST',
    headers: { 'Content-Type': 'application/json' },
    body: JSON.stringify(body),
  })
  if (answer.ok) return
  const told = (await answer.json().catch(() => ({}))) as Partial<Failure>
  throw new RequestFailed({ error: told.error ?? (answer.status === 403 ? 'forbidden' : 'bad_request'), retryAfter: told.retryAfter })
}

export const setUp = (secret: string, account: string, password: string): Promise<void> =>
  post('/api/setup', { secret, account, password })

export const logIn = (account: string, password: string): Promise<void> => post('/api/login', { account, password })

export const logOut = (): Promise<void> => post('/api/logout', {})

export const changePassword = (password: string, new_password: string): Promise<void> =>
  post('/api/password', { password, new_password })
