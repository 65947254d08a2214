// A stand-in for the web host while the front end is being worked on: it serves dist/ under the strict policy and speaks the
// protocol of docs/protocol.md over made-up pages. Start it with `npm run mock [PORT]`; the account is admin, the password "correct horse",
// the set-up secret (with --setup) "secret".
import { createServer } from 'node:http'
import { readFile } from 'node:fs/promises'
import { extname, join, normalize } from 'node:path'
import { fileURLToPath } from 'node:url'
import { WebSocketServer } from 'ws'
import { MockSession } from './session.js'

const port = Number(process.argv.find(argument => /^\d+$/.test(argument)) ?? 8026)
const root = fileURLToPath(new URL('../dist/', import.meta.url))
const german = process.argv.includes('--german')
const password = { needed: !process.argv.includes('--setup'), text: 'correct horse' }
const policy =
  "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; font-src 'self'; connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"
const kinds = {
  '.html': 'text/html; charset=utf-8',
  '.js': 'text/javascript; charset=utf-8',
  '.css': 'text/css; charset=utf-8',
  '.svg': 'image/svg+xml',
}
const sessions = new Map()
let tries = 0

const cookieOf = request => /zrl_session=(\w+)/.exec(request.headers.cookie ?? '')?.[1]

async function bodyOf(request) {
  let text = ''
  for await (const part of request) text += part
  return JSON.parse(text || '{}')
}

function answer(response, status, body, headers = {}) {
  response.writeHead(status, { 'Content-Type': 'application/json', 'Cache-Control': 'no-store', ...headers })
  response.end(JSON.stringify(body))
}

function signIn(response, account) {
  const key = Math.random().toString(36).slice(2)
  sessions.set(key, new MockSession(account, german))
  answer(response, 200, { account }, { 'Set-Cookie': `zrl_session=${key}; HttpOnly; SameSite=Strict; Path=/` })
}

function serveFile(request, response) {
  const file = sessions.get(cookieOf(request))?.files.get(request.url.slice('/file/'.length))
  if (!file) return answer(response, 404, { error: 'no_file' })
  response.writeHead(200, { 'Content-Type': 'application/octet-stream', 'Content-Disposition': 'attachment', 'X-Content-Type-Options': 'nosniff' })
  response.end(file.content)
}

async function upload(request, response) {
  const session = sessions.get(cookieOf(request))
  if (!session) return answer(response, 401, { error: 'signed_out' })
  for await (const part of request) void part
  const [form, control, name] = request.headers['upload-to'].split('/').map(decodeURIComponent)
  const kept = session.uploaded(form, control, name)
  return kept ? answer(response, 200, { name: kept }) : answer(response, 409, { error: 'refused' })
}

async function api(request, response) {
  if (request.url === '/api/state') {
    const session = sessions.get(cookieOf(request))
    const language = german ? 'german' : 'english'
    return answer(response, 200, { setup: !password.needed, account: session?.account ?? null, language, product: 'Mirvan', version: '5.2' })
  }
  const body = await bodyOf(request)
  if (request.url === '/api/setup') {
    if (password.needed) return answer(response, 409, { error: 'already_set_up' })
    if (body.secret !== 'secret') return answer(response, 401, { error: 'wrong_secret' })
    if ([...body.password].length < 10) return answer(response, 400, { error: 'weak_password' })
    Object.assign(password, { needed: true, text: body.password })
    return signIn(response, body.account)
  }
  if (request.url === '/api/login') {
    if (tries >= 3) {
      setTimeout(() => (tries = 0), 5000)
      return answer(response, 429, { error: 'too_many_tries', retryAfter: 5 })
    }
    if (body.password !== password.text) {
      ++tries
      return answer(response, 401, { error: 'wrong_password' })
    }
    tries = 0
    return signIn(response, body.account)
  }
  if (request.url === '/api/logout') {
    sessions.get(cookieOf(request))?.end(4002)
    sessions.delete(cookieOf(request))
    return answer(response, 200, { account: '' })
  }
  // For trying out what the browser does when the line drops.
  if (request.url === '/mock/drop') {
    for (const session of sessions.values()) session.end(1001)
    return answer(response, 200, {})
  }
  return answer(response, 404, { error: 'bad_request' })
}

const server = createServer((request, response) => {
  void (async () => {
    try {
      if (request.url.startsWith('/api/') || request.url.startsWith('/mock/')) return await api(request, response)
      if (request.url === '/upload') return await upload(request, response)
      if (request.url.startsWith('/file/')) return serveFile(request, response)
      const path = request.url === '/' ? 'index.html' : normalize(request.url.split('?')[0]).replace(/^[/.]+/, '')
      const content = await readFile(join(root, path))
      response.writeHead(200, {
        'Content-Type': kinds[extname(path)] ?? 'application/octet-stream',
        'Content-Security-Policy': policy,
        'X-Content-Type-Options': 'nosniff',
      })
      response.end(content)
    } catch (error) {
      if (error.code !== 'ENOENT') console.error(error)
      response.writeHead(404).end()
    }
  })()
})

const sockets = new WebSocketServer({ noServer: true, maxPayload: 1 << 20 })
server.on('upgrade', (request, socket, head) => {
  const session = sessions.get(cookieOf(request))
  if (!session) return socket.end('HTTP/1.1 401 Unauthorized\r\n\r\n')
  sockets.handleUpgrade(request, socket, head, opened => session.attach(opened))
})
server.listen(port, '127.0.0.1', () => console.log(`http://127.0.0.1:${port}/`))
